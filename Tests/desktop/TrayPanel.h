#pragma once

#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>
#include <optional>
#include <string>

#include "desktop/BusObject.h"
#include "platform/linux/statusnotifier/Types.h"

namespace lumiscan::testing {

/// A panel on a session bus: it takes status items, reads their menus and chooses from them. Needs an
/// application object and, between the calls, its events processed.
class TrayPanel : public BusObject {
 public:
  explicit TrayPanel(const std::string& address)
      : BusObject(address, QString("panel-%1").arg(quintptr(this)), "/StatusNotifierWatcher") {
    desktop::statusnotifier::registerTypes();
  }

  bool start() { return bus().registerService(watcher); }
  bool stop() {
    item_.clear();
    return bus().unregisterService(watcher);
  }
  /// The bus name of the item that came last; empty before.
  const QString& item() const { return item_; }

  // Of that item; these wait for its program. What fails comes as an error message, or empty.
  QVariantMap itemProperties() {
    const auto all = call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll",
                          {"org.kde.StatusNotifierItem"});
    return qdbus_cast<QVariantMap>(all.arguments().value(0));
  }
  QDBusMessage callMenu(const QString& member, const QVariantList& arguments) {
    return call("/MenuBar", "com.canonical.dbusmenu", member, arguments);
  }
  desktop::statusnotifier::MenuLayout layout(int id = 0) {
    return qdbus_cast<desktop::statusnotifier::MenuLayout>(
        callMenu("GetLayout", {id, -1, QStringList()}).arguments().value(1));
  }
  void click(int id) { callMenu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U}); }
  /// Whether what is in the submenu of this number has changed. Number 0 is the menu itself.
  bool aboutToShow(int id) { return callMenu("AboutToShow", {id}).arguments().value(0).toBool(); }

 private:
  QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                    const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(item_, path, interface, member);
    message.setArguments(arguments);
    return bus().call(message);
  }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == "RegisterStatusNotifierItem") {
      item_ = message.arguments().at(0).toString();
      return connection.send(message.createReply());
    }
    if (message.arguments() != QVariantList{watcher, "IsStatusNotifierHostRegistered"}) return false;
    return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
  }

  const QString watcher = "org.kde.StatusNotifierWatcher";
  QString item_;
};

/// The number of the item with this label; nothing where there is none.
inline std::optional<int> idOf(const desktop::statusnotifier::MenuLayout& menu, const QString& label) {
  for (const auto& item : menu.children)
    if (item.properties["label"] == label) return item.id;
  return std::nullopt;
}

}  // namespace lumiscan::testing
