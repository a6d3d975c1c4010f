// The user's choice between light and dark, as a desktop portal tells it on a private bus.

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <atomic>
#include <csignal>
#include <memory>

#include "desktop/LinuxFixture.h"
#include "desktop/Servers.h"
#include "platform/Appearance.h"
#include "platform/linux/Appearance.h"

namespace lumiscan::testing {
namespace {

const QString path = "/org/freedesktop/portal/desktop";
const QString interface = "org.freedesktop.portal.Settings";
const QString space = "org.freedesktop.appearance";

/// Answers what a portal answers: a number in a variant in a variant.
class Portal : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.interface(), interface);
    EXPECT_EQ(message.arguments(), (QVariantList{space, "color-scheme"}));
    const QDBusVariant value(QVariant::fromValue(QDBusVariant(scheme.load())));
    return connection.send(message.createReply(QVariant::fromValue(value)));
  }
  std::atomic<unsigned> scheme = 1;
};

TEST(Appearance, FollowsThePortalAndElseThePalette) {
  const LinuxFixture desktop;
  EXPECT_FALSE(platform::Appearance::current().isDark) << "no portal and a light palette";

  Portal portal;
  const auto busWithPortal = [&portal] {
    auto bus = std::make_unique<PrivateBus>();
    const QString address = QString::fromStdString(bus->address());
    auto portalSide = QDBusConnection::connectToBus(address, "portal at " + address);
    EXPECT_TRUE(portalSide.registerVirtualObject(path, &portal));
    EXPECT_TRUE(portalSide.registerService("org.freedesktop.portal.Desktop"));
    return bus;
  };
  auto bus = busWithPortal();
  desktop::ColorScheme scheme([&bus] {
    const QString address = QString::fromStdString(bus->address());
    return QDBusConnection::connectToBus(address, address);
  });
  const auto becomes = [&scheme](bool dark) {
    return LinuxFixture::waitFor([&] { return scheme.isDark() == dark; });
  };
  int changes = 0;
  scheme.changed = [&changes] { ++changes; };
  EXPECT_FALSE(scheme.isDark()) << "not yet answered: the palette's";
  EXPECT_TRUE(becomes(true));
  portal.scheme = 2;
  EXPECT_TRUE(becomes(false));
  portal.scheme = 1;
  EXPECT_TRUE(becomes(true));
  portal.scheme = 0;
  EXPECT_TRUE(becomes(false)) << "no preference: the palette's";
  EXPECT_EQ(changes, 4);

  bus->signal(SIGSTOP);
  EXPECT_FALSE(scheme.isDark()) << "asks a bus that never answers";
  bus = busWithPortal();
  portal.scheme = 1;
  EXPECT_TRUE(becomes(true)) << "the next one does";
}

}  // namespace
}  // namespace lumiscan::testing
