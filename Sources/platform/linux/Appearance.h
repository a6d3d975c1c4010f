#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <optional>

namespace lumiscan::desktop {

/// Whether the user prefers dark windows: what the desktop's portal says, or without one how the toolkit's
/// own palette looks. Never waits for the portal: each answer is the last one known, and has the portal asked
/// again for the next. Main thread only.
class ColorScheme {
 public:
  /// `sessionBus` is the connection of the moment.
  explicit ColorScheme(std::function<QDBusConnection()> sessionBus);
  bool isDark();
  /// Called when the portal has answered something new.
  std::function<void()> changed;

 private:
  void askPortal();

  std::function<QDBusConnection()> sessionBus_;
  QObject context_;
  bool isAsking_ = false;
  std::optional<bool> preferred_;
};

}  // namespace lumiscan::desktop
