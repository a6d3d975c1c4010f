#include "platform/linux/statusnotifier/Item.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStandardPaths>
#include <QtEndian>
#include <utility>

#include "platform/Application.h"
#include "platform/linux/StatusIcon.h"

namespace lumiscan::desktop::statusnotifier {

namespace {

const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
/// The icon that an installation brings, which panels tint themselves.
const QString installedIcon = QStringLiteral("%1-symbolic").arg(platform::applicationID);

/// What panels have room for, in pixels: most take the nearest and scale it.
constexpr int iconSides[] = {16, 18, 20, 22, 24, 28, 32, 36, 40, 44, 48};

/// Whether the user's panel gives an icon that it knows by name the colour that its ground needs. LXQt's
/// draws it as it is, dark on dark; the name must not even be told, since it goes before the pictures.
bool panelTintsNamedIcons() {
  return !qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("LXQt"));
}

Pixmap pixmapOf(const QImage& picture) {
  const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
  Pixmap pixmap{image.width(), image.height(), QByteArray(image.sizeInBytes(), Qt::Uninitialized)};
  qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, pixmap.bytes.data());
  return pixmap;
}

}  // namespace

Item::Item(QDBusConnection bus, ColorScheme& colorScheme)
    : colorScheme_(colorScheme),
      bus_(std::move(bus)),
      menu_(bus_),
      watcherWatch_(watcher, bus_, QDBusServiceWatcher::WatchForOwnerChange),
      service_(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid())) {
  new ItemAdaptor(*this);
  if (!bus_.isConnected()) {
    known_ = true;
    return;
  }
  bus_.registerObject(itemPath, this, QDBusConnection::ExportAdaptors);
  bus_.registerService(service_);
  connect(&watcherWatch_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) {
            ++watcherNumber_;
            if (owner.isEmpty())
              settle(false);
            else
              announce();
          });
  for (const char* name : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
    bus_.connect({}, watcherPath, watcher, QString::fromLatin1(name), this, SLOT(askForHost()));
  connect(&colorScheme_, &ColorScheme::changed, this, [this] {
    if (colorScheme_.isDark() != drawnForDark_) emit buttonChanged();
  });
  announce();
}

void Item::setButton(platform::StatusItemButton button) {
  button_ = std::move(button);
  emit buttonChanged();
}

QList<Pixmap> Item::pixmaps() {
  drawnForDark_ = colorScheme_.isDark();
  QList<Pixmap> pixmaps;
  for (const int side : iconSides)
    pixmaps.append(pixmapOf(statusPicture(button_, side, iconColor(drawnForDark_), Halo::opposite)));
  return pixmaps;
}

void Item::announce() {
  QDBusMessage call = QDBusMessage::createMethodCall(watcher, watcherPath, watcher,
                                                     QStringLiteral("RegisterStatusNotifierItem"));
  call << service_;
  call.setAutoStartService(false);
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, asked = watcherNumber_] {
    answer->deleteLater();
    if (asked != watcherNumber_) return;
    if (answer->isError())
      settle(false);
    else
      askForHost();
  });
}

void Item::askForHost() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcher, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
  call.setAutoStartService(false);
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, asked = watcherNumber_] {
    answer->deleteLater();
    if (asked != watcherNumber_) return;
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    settle(!reply.isError() && reply.value().variant().toBool());
  });
}

void Item::settle(bool shown) {
  known_ = true;
  shown_ = shown;
  emit changed();
}

ItemAdaptor::ItemAdaptor(Item& item) : QDBusAbstractAdaptor(&item), item_(item) {
  connect(&item, &Item::buttonChanged, this, &ItemAdaptor::NewIcon);
  connect(&item, &Item::buttonChanged, this, &ItemAdaptor::NewToolTip);
}

QString ItemAdaptor::iconName() const {
  const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(installedIcon);
  const bool installed = !QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty();
  return item_.button().image && installed && panelTintsNamedIcons() ? installedIcon : QString();
}

QString ItemAdaptor::iconDescription() const {
  const auto& image = item_.button().image;
  return image ? QString::fromStdString(image->accessibilityDescription) : QString();
}

ToolTip ItemAdaptor::toolTip() const {
  statusnotifier::ToolTip toolTip;
  toolTip.title = QString::fromStdString(item_.button().toolTip);
  return toolTip;
}

}  // namespace lumiscan::desktop::statusnotifier
