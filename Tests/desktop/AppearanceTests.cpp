// The user's choice between light and dark, as a desktop portal tells it on a private bus.

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTimer>
#include <atomic>
#include <csignal>
#include <memory>

#include "desktop/BusObject.h"
#include "desktop/LinuxFixture.h"
#include "desktop/Servers.h"
#include "desktop/TrayPanel.h"
#include "platform/Appearance.h"
#include "platform/linux/Appearance.h"

namespace lumiscan::testing {
namespace {

const QString path = "/org/freedesktop/portal/desktop";
const QString interface = "org.freedesktop.portal.Settings";
const QString space = "org.freedesktop.appearance";

/// Answers what a portal answers: a number in a variant in a variant. With it ends the program's connection.
class Portal : public BusObject {
 public:
  explicit Portal(const std::string& address) : BusObject(address, "portal", path) {
    EXPECT_TRUE(bus().registerService("org.freedesktop.portal.Desktop"));
  }
  ~Portal() override { QDBusConnection::disconnectFromBus("program"); }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.interface(), interface);
    EXPECT_EQ(message.arguments(), (QVariantList{space, "color-scheme"}));
    ++questions;
    const QDBusVariant value(QVariant::fromValue(QDBusVariant(scheme.load())));
    return connection.send(message.createReply(QVariant::fromValue(value)));
  }
  /// Tells of a change of one of its settings, as number, to whom it may concern.
  void tell(const QString& key, unsigned value) {
    EXPECT_TRUE(
        send(path, interface, "SettingChanged", {space, key, QVariant::fromValue(QDBusVariant(value))}));
  }
  std::atomic<unsigned> scheme = 1;
  std::atomic<int> questions = 0;
};

constexpr unsigned dark = 1;
constexpr unsigned light = 2;

TEST(Appearance, FollowsThePortalAndElseThePalette) {
  const LinuxFixture desktop;
  EXPECT_FALSE(platform::Appearance::current().isDark) << "no portal and a light palette";

  const PrivateBus bus;
  Portal portal(bus.address());
  desktop::ColorScheme scheme(
      QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "program"));
  int changes = 0;
  QObject::connect(&scheme, &desktop::ColorScheme::changed, [&changes] { ++changes; });
  const auto changed = [&changes](int count) {
    return LinuxFixture::waitFor([&] { return changes == count; });
  };
  EXPECT_FALSE(scheme.isDark()) << "not yet answered: the palette's";
  ASSERT_TRUE(changed(1)) << "the first answer";
  EXPECT_EQ(portal.questions, 1);

  // It hears of a change without asking.
  portal.tell("color-scheme", light);
  EXPECT_TRUE(changed(2));
  QTimer lastCame;
  ASSERT_TRUE(QDBusConnection("program").connect({}, path, interface, "Last", &lastCame, SLOT(start())));
  portal.tell("contrast", dark);
  portal.tell("color-scheme", light);
  EXPECT_TRUE(portal.send(path, interface, "Last"));
  EXPECT_TRUE(LinuxFixture::waitFor([&] { return lastCame.isActive(); }));
  EXPECT_EQ(changes, 2) << "another setting and the same choice change nothing";
  portal.tell("color-scheme", dark);
  EXPECT_TRUE(changed(3));
  EXPECT_EQ(portal.questions, 1);

  // And asks anew whenever it is looked at.
  const auto becomes = [&scheme](bool isDark) {
    return LinuxFixture::waitFor([&] { return scheme.isDark() == isDark; });
  };
  portal.scheme = light;
  EXPECT_TRUE(becomes(false));
  portal.scheme = dark;
  EXPECT_TRUE(becomes(true));
  portal.scheme = 0;
  EXPECT_TRUE(becomes(false)) << "no preference: the palette's";
  EXPECT_EQ(changes, 6);
}

TEST(Appearance, GoesByTheNextBusWhenOneEndsWithAQuestionOpen) {
  const LinuxFixture desktop;
  auto bus = std::make_unique<PrivateBus>();
  auto portal = std::make_unique<Portal>(bus->address());
  const auto connection = [&bus] {
    return QDBusConnection::connectToBus(QString::fromStdString(bus->address()), "program");
  };
  desktop::ColorScheme scheme(connection());
  ASSERT_TRUE(LinuxFixture::waitFor([&] { return portal->questions == 1; }));
  bus->signal(SIGSTOP);
  scheme.isDark();
  bus = nullptr;
  portal = nullptr;

  bus = std::make_unique<PrivateBus>();
  portal = std::make_unique<Portal>(bus->address());
  portal->scheme = light;
  scheme.useBus(connection());
  EXPECT_TRUE(LinuxFixture::waitFor([&] { return !scheme.isDark() && portal->questions > 0; }));
  portal->scheme = dark;
  EXPECT_TRUE(LinuxFixture::waitFor([&] { return scheme.isDark(); }));
}

TEST(Appearance, TheIconAndAnOpenWindowFollowAtOnce) {
  const PrivateDesktop screen;
  const PrivateBus bus;
  setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
  const EventLoop loop;
  Portal portal(bus.address());
  portal.scheme = light;
  TrayPanel panel(bus.address());
  ASSERT_TRUE(panel.start());
  const Process program({LUMISCAN_PROGRAM});
  ASSERT_TRUE(loop.waitFor([&] { return !panel.item().isEmpty(); }));

  const auto iconIsLight = [&] {
    const auto pixmaps =
        qdbus_cast<QList<desktop::statusnotifier::Pixmap>>(panel.itemProperties()["IconPixmap"]);
    if (pixmaps.isEmpty()) return std::optional<bool>();
    const QByteArray& bytes = pixmaps.last().bytes;
    int balance = 0;
    for (qsizetype i = 0; i + 3 < bytes.size(); i += 4)
      if (bytes[i] == '\xFF') balance += static_cast<unsigned char>(bytes[i + 1]) > 0x80 ? 1 : -1;
    return std::optional(balance > 0);
  };
  ASSERT_TRUE(loop.waitFor([&] { return iconIsLight() == false; })) << "dark ink for a light panel";
  panel.click(idOf(panel.layout(), "Settings…").value());
  const auto windowIsDark = [&] {
    if (screen.windowsOfClass("Lumiscan").size() != 1) return std::optional<bool>();
    // Left of what is in the window, which is in the middle of the screen.
    return std::optional((screen.pixelAt(screen.width() / 2 - 250, screen.height() / 2) & 0xFF) < 0x50);
  };
  ASSERT_TRUE(loop.waitFor([&] { return windowIsDark() == false; }));

  QTimer iconAnnounced;
  panel.bus().connect(panel.item(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", "NewIcon",
                      &iconAnnounced, SLOT(start()));
  for (const unsigned scheme : {dark, light, dark}) {
    iconAnnounced.stop();
    portal.scheme = scheme;
    portal.tell("color-scheme", scheme);
    EXPECT_TRUE(loop.waitFor([&] { return windowIsDark() == (scheme == dark); })) << scheme;
    EXPECT_TRUE(loop.waitFor([&] { return iconAnnounced.isActive(); })) << scheme;
    EXPECT_EQ(iconIsLight(), scheme == dark);
  }
}

}  // namespace
}  // namespace lumiscan::testing
