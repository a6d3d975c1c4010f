#include "platform/linux/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace lumiscan::desktop {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString space = QStringLiteral("org.freedesktop.appearance");
const QString key = QStringLiteral("color-scheme");

/// The portal's number: 1 for dark, 2 for light, 0 for no preference. Older portals wrap it once more.
std::optional<bool> prefersDark(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  const unsigned scheme = value.toUInt();
  if (scheme != 1 && scheme != 2) return std::nullopt;
  return scheme == 1;
}

}  // namespace

ColorScheme::ColorScheme() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
  question << space << key;
  auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (!reply.isError()) preferred_ = prefersDark(QVariant::fromValue(reply.value()));
    answer->deleteLater();
  });
}

bool ColorScheme::isDark() const {
  if (preferred_) return *preferred_;
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

void ColorScheme::settingChanged(const QString& changedSpace, const QString& changedKey,
                                 const QDBusVariant& value) {
  if (changedSpace == space && changedKey == key) preferred_ = prefersDark(value.variant());
}

}  // namespace lumiscan::desktop
