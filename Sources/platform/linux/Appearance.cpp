#include "platform/linux/Appearance.h"

#include <QDBusMessage>
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

ColorScheme::ColorScheme(std::function<QDBusConnection()> sessionBus) : sessionBus_(std::move(sessionBus)) {
  askPortal();
}

void ColorScheme::askPortal() {
  const QDBusConnection bus = sessionBus_();
  if (isAsking_ || !bus.isConnected()) return;
  QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
  question << space << key;
  auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), &context_);
  isAsking_ = true;
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &context_, [this, answer] {
    isAsking_ = false;
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    const auto before = std::exchange(
        preferred_, reply.isError() ? std::nullopt : prefersDark(QVariant::fromValue(reply.value())));
    answer->deleteLater();
    if (preferred_ != before && changed) changed();
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
