#include "desktop/TrayPanel.h"

#include <QDBusVariant>

namespace lumiscan::testing {

namespace {

using desktop::statusnotifier::MenuLayout;

const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");

}  // namespace

TrayPanel::TrayPanel(const std::string& address)
    : BusObject(QString::fromStdString(address), QStringLiteral("panel-%1").arg(quintptr(this)),
                QStringLiteral("/StatusNotifierWatcher")) {
  desktop::statusnotifier::registerTypes();
}

bool TrayPanel::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.member() == u"RegisterStatusNotifierItem") {
    item_ = message.arguments().at(0).toString();
    return connection.send(message.createReply());
  }
  if (message.arguments() != QVariantList{watcher, QStringLiteral("IsStatusNotifierHostRegistered")})
    return false;
  return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
}

bool TrayPanel::start() { return bus().registerService(watcher); }

bool TrayPanel::stop() {
  item_.clear();
  return bus().unregisterService(watcher);
}

QDBusMessage TrayPanel::call(const QString& path, const QString& interface, const QString& member,
                             const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(item_, path, interface, member);
  message.setArguments(arguments);
  return bus().call(message);
}

QVariantMap TrayPanel::itemProperties() {
  return qdbus_cast<QVariantMap>(
      call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
           QStringLiteral("GetAll"), {QStringLiteral("org.kde.StatusNotifierItem")})
          .arguments()
          .value(0));
}

QDBusMessage TrayPanel::callMenu(const QString& member, const QVariantList& arguments) {
  return call(QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), member, arguments);
}

MenuLayout TrayPanel::layout(int id) {
  return qdbus_cast<MenuLayout>(
      callMenu(QStringLiteral("GetLayout"), {id, -1, QStringList()}).arguments().value(1));
}

void TrayPanel::click(int id) {
  callMenu(QStringLiteral("Event"),
           {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
}

bool TrayPanel::aboutToShow(int id) {
  return callMenu(QStringLiteral("AboutToShow"), {id}).arguments().value(0).toBool();
}

std::optional<int> idOf(const MenuLayout& menu, const QString& label) {
  for (const MenuLayout& item : menu.children)
    if (item.properties[QStringLiteral("label")] == label) return item.id;
  return std::nullopt;
}

}  // namespace lumiscan::testing
