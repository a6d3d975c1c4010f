#include "platform/linux/Appearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>
#include <utility>

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

ColorScheme::ColorScheme(QDBusConnection bus) : bus_(std::move(bus)) { followPortal(); }

void ColorScheme::useBus(QDBusConnection bus) {
  bus_ = std::move(bus);
  followPortal();
}

void ColorScheme::followPortal() {
  // From whomever, since to name the sender would mean to wait for the bus to find it.
  bus_.connect({}, path, interface, QStringLiteral("SettingChanged"), {space, key}, QStringLiteral("ssv"),
               this, SLOT(settingChanged(QDBusMessage)));
  askPortal();
}

void ColorScheme::settingChanged(const QDBusMessage& signal) {
  settle(prefersDark(signal.arguments().value(2)));
}

void ColorScheme::settle(std::optional<bool> preferred) {
  if (std::exchange(preferred_, preferred) != preferred) emit changed();
}

void ColorScheme::askPortal() {
  if (isAsking_ || !bus_.isConnected()) return;
  QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
  question << space << key;
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  isAsking_ = true;
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    isAsking_ = false;
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    answer->deleteLater();
    settle(reply.isError() ? std::nullopt : prefersDark(QVariant::fromValue(reply.value())));
  });
}

bool ColorScheme::isDark() {
  const QPalette palette = QGuiApplication::palette();
  const bool dark = preferred_.value_or(palette.color(QPalette::Window).lightness() <
                                        palette.color(QPalette::WindowText).lightness());
  askPortal();
  return dark;
}

}  // namespace lumiscan::desktop
