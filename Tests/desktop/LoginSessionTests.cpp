// Waking and switching users, as a login manager on a private bus tells of them.

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <chrono>
#include <csignal>
#include <cstdlib>

#include "desktop/BusObject.h"
#include "desktop/Servers.h"
#include "platform/linux/LoginSession.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {
namespace {

const QString managerPath = "/org/freedesktop/login1";
const QString sessionPath = managerPath + "/session/_37";
const QString otherSessionPath = managerPath + "/session/_38";

/// Knows one session, number 7, which is also the caller's.
class LoginManager : public BusObject {
 public:
  explicit LoginManager(const std::string& address)
      : BusObject(address, "manager", managerPath, QDBusConnection::SubPath) {
    EXPECT_TRUE(bus().registerService("org.freedesktop.login1"));
  }

  void prepareForSleep(bool begins) {
    EXPECT_TRUE(send(managerPath, "org.freedesktop.login1.Manager", "PrepareForSleep", {begins}));
  }
  void changeProperty(const QString& path, const QString& name, bool value) {
    EXPECT_TRUE(send(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                     {"org.freedesktop.login1.Session", QVariantMap{{name, value}}, QStringList()}));
  }

 private:
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == "Get" && message.path() == managerPath + "/session/auto")
      return connection.send(message.createReply(QVariant::fromValue(QDBusVariant("7"))));
    if (message.member() == "GetSession" && message.arguments() == QVariantList{"7"})
      return connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(sessionPath))));
    return connection.send(
        message.createErrorReply("org.freedesktop.login1.NoSuchSession", "no such session"));
  }
};

class LoginSessionTest : public ::testing::Test, protected EventLoop {
 protected:
  LoginSessionTest() {
    for (const auto name : {platform::screensDidWake, platform::sessionDidBecomeActive})
      observations_.push_back(center().addObserver(name, [this, name] {
        posted_.emplace_back(name);
        EXPECT_TRUE(desktop_.dispatcher().isMainThread());
      }));
  }

  /// Starts a bus, which the program takes for the system's from now on.
  static std::unique_ptr<PrivateBus> startBus() {
    auto bus = std::make_unique<PrivateBus>();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus->address().c_str(), 1);
    return bus;
  }
  platform::NotificationCenter& center() { return desktop_.workspaceNotificationCenter(); }

  SimulatedDesktop desktop_;
  std::vector<std::string> posted_;
  std::vector<std::shared_ptr<platform::NotificationCenter::Observation>> observations_;
};

TEST_F(LoginSessionTest, PostsWakingAndTheReturnToOurSession) {
  const auto bus = startBus();
  LoginManager manager(bus->address());
  for (const char* identifier : {"7", "", "one that has ended"}) {
    SCOPED_TRACE(identifier);
    setenv("XDG_SESSION_ID", identifier, 1);
    const desktop::LoginSession session(center());
    // It follows its session once it knows it.
    ASSERT_TRUE(waitUntil([this] { return !posted_.empty(); },
                          [&] {
                            manager.changeProperty(sessionPath, "Active", true);
                            processEvents();
                          }));
    manager.prepareForSleep(false);
    ASSERT_TRUE(waitFor([this] { return posted_.back() == platform::screensDidWake; }));
    posted_.clear();

    manager.prepareForSleep(true);
    manager.changeProperty(otherSessionPath, "Active", true);
    manager.changeProperty(sessionPath, "IdleHint", true);
    manager.changeProperty(sessionPath, "Active", false);
    manager.changeProperty(sessionPath, "Active", true);
    manager.prepareForSleep(false);
    ASSERT_TRUE(waitFor([this] { return posted_.size() >= 2; }));
    EXPECT_EQ(posted_, (std::vector<std::string>{std::string(platform::sessionDidBecomeActive),
                                                 std::string(platform::screensDidWake)}));
    posted_.clear();
  }
  EXPECT_TRUE(desktop_.logSink().take().empty());
}

TEST_F(LoginSessionTest, WithoutALoginManagerItSaysSoOnce) {
  const auto& lines = desktop_.logSink().lines;
  const auto expectOneLine = [&lines] {
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("workspace: no login session to follow: ")) << lines[0];
  };
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  { const desktop::LoginSession session(center()); }
  expectOneLine();
  desktop_.logSink().take();

  const auto bus = startBus();
  const desktop::LoginSession session(center());
  EXPECT_TRUE(waitFor([&] { return !lines.empty(); }));
  bus->signal(SIGTERM);
  bus->waitForEnd(processEvents);
  processEvents();
  expectOneLine();
}

TEST_F(LoginSessionTest, ABusThatNeverAnswersHoldsNothingUp) {
  const auto bus = startBus();
  bus->signal(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  { const desktop::LoginSession session(center()); }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

}  // namespace
}  // namespace lumiscan::testing
