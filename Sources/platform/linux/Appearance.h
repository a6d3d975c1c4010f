#pragma once

#include <QObject>
#include <optional>

class QDBusVariant;
class QString;

namespace lumiscan::desktop {

/// Whether the user prefers dark windows: what the desktop's portal says, or without one how the toolkit's
/// own palette looks. Follows changes; never waits for the portal. Main thread only.
class ColorScheme : public QObject {
  Q_OBJECT

 public:
  ColorScheme();
  bool isDark() const;

 private:
  Q_SLOT void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

  std::optional<bool> preferred_;
};

}  // namespace lumiscan::desktop
