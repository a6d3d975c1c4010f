#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <functional>
#include <stdexcept>

#include "desktop/Process.h"

namespace lumiscan::testing {

/// An application object without a desktop, for what needs an event loop. Also the base of test fixtures.
class EventLoop {
 public:
  static void processEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }
  /// Waits as `waitUntil` does, handling events meanwhile.
  static bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, processEvents); }

 private:
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  int argc_ = 1;
  QCoreApplication application_{argc_, argv_};
};

/// An object of a test's own on a bus, at a connection of its own, which ends with it. Answers come when an
/// event loop runs.
class BusObject : public QDBusVirtualObject {
 public:
  /// No two connections of a process have the same name.
  BusObject(const std::string& address, const QString& connectionName, const QString& path,
            QDBusConnection::VirtualObjectRegisterOption reach = QDBusConnection::SingleNode)
      : bus_(QDBusConnection::connectToBus(QString::fromStdString(address), connectionName)), path_(path) {
    if (!bus_.registerVirtualObject(path, this, reach)) throw std::runtime_error("no object on the bus");
  }
  ~BusObject() override {
    // A question that waits is refused by its connection, which must be there yet, and none may come after.
    bus_.unregisterObject(path_);
    QCoreApplication::removePostedEvents(this);
    QDBusConnection::disconnectFromBus(bus_.name());
  }

  QDBusConnection bus() const { return bus_; }
  /// Tells everybody on the bus; whether it could.
  bool send(const QString& path, const QString& interface, const QString& name,
            const QVariantList& arguments = {}) const {
    QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
    signal.setArguments(arguments);
    return bus_.send(signal);
  }

 private:
  QString introspect(const QString&) const override { return {}; }

  QDBusConnection bus_;
  const QString path_;
};

}  // namespace lumiscan::testing
