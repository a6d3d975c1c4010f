#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <optional>

namespace lumiscan::desktop {

/// Whether the user prefers dark windows: what the desktop's portal says, or without one how the toolkit's
/// own palette looks. Hears of a change from the portal at once. Never waits for the portal: each answer is
/// the last one known, and has the portal asked again for the next, since it may have come or gone. Main
/// thread only.
class ColorScheme : public QObject {
  Q_OBJECT

 public:
  explicit ColorScheme(QDBusConnection bus);
  /// From now on, in the place of one that has ended.
  void useBus(QDBusConnection bus);
  bool isDark();

  /// The portal has said something new.
  Q_SIGNAL void changed();

 private:
  /// The portal's signal: space, key and value. The bus sends it for our key alone.
  Q_SLOT void settingChanged(const QDBusMessage& signal);
  void followPortal();
  void askPortal();
  void settle(std::optional<bool> preferred);

  QDBusConnection bus_;
  bool isAsking_ = false;
  std::optional<bool> preferred_;
};

}  // namespace lumiscan::desktop
