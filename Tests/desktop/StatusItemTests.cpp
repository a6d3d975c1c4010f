// The status item in trays of both kinds: a panel of our own that asks over D-Bus, and one that embeds
// windows.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <csignal>
#include <fstream>

#include "desktop/PrivateDesktop.h"
#include "desktop/Servers.h"
#include "platform/linux/statusnotifier/Types.h"

namespace lumiscan::testing {
namespace {

using desktop::statusnotifier::MenuItemProperties;
using desktop::statusnotifier::MenuLayout;
using desktop::statusnotifier::Pixmap;

const QString watcher = "org.kde.StatusNotifierWatcher";
const QString propertiesInterface = "org.freedesktop.DBus.Properties";
const QString menuInterface = "com.canonical.dbusmenu";

/// A panel: collects status items and says that it shows them.
class Panel : public QDBusVirtualObject {
 public:
  explicit Panel(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerVirtualObject("/StatusNotifierWatcher", this);
  }
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == "RegisterStatusNotifierItem") {
      item = message.arguments().at(0).toString();
      return connection.send(message.createReply());
    }
    EXPECT_EQ(message.arguments(), (QVariantList{watcher, "IsStatusNotifierHostRegistered"}));
    return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
  }
  void start() { ASSERT_TRUE(bus_.registerService(watcher)); }
  void stop() {
    ASSERT_TRUE(bus_.unregisterService(watcher));
    item.clear();
  }

  QString item;  ///< The service of the item that came last; empty before.

 private:
  QDBusConnection bus_;
};

class StatusItemTest : public ::testing::Test {
 protected:
  StatusItemTest() {
    desktop::statusnotifier::registerTypes();
    setenv("DBUS_SESSION_BUS_ADDRESS", busDaemon_.address().c_str(), 1);
    setenv("TZ", "UTC", 1);
  }
  void TearDown() override { QDBusConnection::disconnectFromBus("panel"); }

  static void processEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }
  static bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, processEvents); }

  void startProgram() { program_ = Process::start({LUMISCAN_PROGRAM}); }
  bool isInPanel() {
    return waitFor([this] { return !panel_.item.isEmpty(); });
  }
  long logged(const std::string& line) const { return program_->countInError(line); }

  QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                    const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(panel_.item, path, interface, member);
    message.setArguments(arguments);
    QDBusMessage reply = bus_.call(message);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    return reply;
  }
  QDBusMessage callMenu(const QString& member, const QVariantList& arguments) {
    return call("/MenuBar", menuInterface, member, arguments);
  }
  MenuLayout layout(int id = 0) {
    const QDBusMessage reply = callMenu("GetLayout", {id, -1, QStringList()});
    EXPECT_EQ(reply.signature(), "u(ia{sv}av)");
    return qdbus_cast<MenuLayout>(reply.arguments().at(1));
  }
  /// A line an item: what marks it, and its label.
  static std::vector<std::string> lines(const MenuLayout& menu) {
    std::vector<std::string> lines;
    for (const MenuLayout& item : menu.children) {
      QString line = item.properties["label"].toString();
      if (item.properties["type"] == "separator") line = "---";
      if (item.properties["toggle-type"] == "checkmark" && item.properties["toggle-state"] == 1)
        line.prepend("✓ ");
      if (!item.properties.value("enabled", true).toBool()) line = QString("(%1)").arg(line);
      if (item.properties["children-display"] == "submenu") line += " ▸";
      lines.push_back(line.toStdString());
    }
    return lines;
  }
  int idOf(const MenuLayout& menu, const QString& label) {
    for (const MenuLayout& item : menu.children)
      if (item.properties["label"] == label) return item.id;
    ADD_FAILURE() << "no item " << label.toStdString();
    return -1;
  }
  void click(int id) { callMenu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U}); }
  bool aboutToShow(int id) { return callMenu("AboutToShow", {id}).arguments().at(0).toBool(); }
  std::size_t windows() const { return screen_.windowsOfClass("Lumiscan").size(); }

  PrivateDesktop screen_;
  PrivateBus busDaemon_;
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  int argc_ = 1;
  QCoreApplication application_{argc_, argv_};
  QDBusConnection bus_ = QDBusConnection::connectToBus(QString::fromStdString(busDaemon_.address()), "panel");
  Panel panel_{bus_};
  std::unique_ptr<Process> program_;
};

TEST_F(StatusItemTest, APanelReadsAndChoosesOverTheBus) {
  const QByteArray history = R"([{"id":"0F9A3B5C-1D2E-4F60-8A7B-9C0D1E2F3A4B","date":60,"mode":"barcode",)"
                             R"("text":"snake_case & <b>\r_\nmore"}])";
  screen_.writePreferences(R"({"captureHistory": {"data": ")" + history.toBase64().toStdString() + R"("}})");
  panel_.start();
  startProgram();
  ASSERT_TRUE(isInPanel());

  const QVariantMap item = qdbus_cast<QVariantMap>(
      call("/StatusNotifierItem", propertiesInterface, "GetAll", {"org.kde.StatusNotifierItem"})
          .arguments()
          .at(0));
  EXPECT_TRUE(item["ItemIsMenu"].toBool());
  EXPECT_EQ(item["Menu"].value<QDBusObjectPath>().path(), "/MenuBar");
  EXPECT_EQ(qdbus_cast<desktop::statusnotifier::ToolTip>(item["ToolTip"]).title,
            "Lumiscan — instant text capture by Varnholt");
  for (const Pixmap& pixmap : qdbus_cast<QList<Pixmap>>(item["IconPixmap"])) {
    EXPECT_EQ(pixmap.bytes.size(), pixmap.width * pixmap.height * 4);
    EXPECT_TRUE(pixmap.bytes.contains('\xFF') && pixmap.bytes.contains('\x00'));
  }

  ASSERT_EQ(layout().children.size(), 17U);
  const auto line = [this](std::size_t place) { return lines(layout()).at(place); };
  EXPECT_EQ(line(0), "Capture Text\t⇧⌘2");
  EXPECT_EQ(line(2), "Capture & Speak\t⌃⌥⌘S");
  EXPECT_EQ(line(6), "---");
  EXPECT_EQ(line(7), "Additive Clipboard");
  EXPECT_EQ(line(10), "Recent Captures ▸");
  click(idOf(layout(), "Additive Clipboard"));
  EXPECT_TRUE(waitFor([&] { return line(7) == "✓ Additive Clipboard"; }));

  const long registrations = logged("hotkeys registered");
  EXPECT_FALSE(aboutToShow(0)) << "nothing to read anew";
  EXPECT_EQ(logged("hotkeys registered"), registrations + 1);

  const int historyID = idOf(layout(), "Recent Captures");
  const QString label = "00:01  [code] snake__case & <b> __";
  EXPECT_TRUE(aboutToShow(historyID));
  const int entry = idOf(layout(historyID), label);
  const auto group = callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>{entry}), QStringList()});
  EXPECT_EQ(qdbus_cast<QList<MenuItemProperties>>(group.arguments().at(0)).at(0).properties,
            (QVariantMap{{"label", label}}))
      << "the whole text stays where it is";
  click(entry);
  EXPECT_TRUE(waitFor([] { return PrivateDesktop::clipboard() == "snake_case & <b>\r_\nmore"; }));
  click(idOf(layout(), "Clear History"));
  EXPECT_TRUE(waitFor([&] {
    aboutToShow(historyID);
    return lines(layout(historyID)) == std::vector<std::string>{"(No captures yet)"};
  }));

  click(idOf(layout(), "Settings…"));
  ASSERT_TRUE(waitFor([this] {
    const auto shown = screen_.windowsOfClass("Lumiscan");
    return shown.size() == 1 && screen_.focusedWindow() == shown.front();
  }));
  for (int i = 0; i < 3; ++i) screen_.pressKeys({KEY_TAB});
  screen_.pressKeys({KEY_SPACE});
  EXPECT_TRUE(waitFor([&] { return line(7) == "Additive Clipboard"; }))
      << "the menu follows the fourth switch";

  click(idOf(layout(), "About Lumiscan"));
  ASSERT_TRUE(waitFor([this] { return windows() == 2 && screen_.focusedWindow() > XCB_INPUT_FOCUS_PARENT; }));
  click(idOf(layout(), "About Lumiscan"));
  EXPECT_EQ(layout().children.size(), 17U) << "a box in front holds nothing up";
  EXPECT_EQ(windows(), 2U);
  EXPECT_TRUE(waitFor([this] {
    screen_.pressKeys({KEY_ENTER});
    return windows() == 1;
  }));
  click(idOf(layout(), "About Lumiscan"));
  ASSERT_TRUE(waitFor([this] { return windows() == 2; }));
  click(idOf(layout(), "Quit Lumiscan"));
  EXPECT_EQ(program_->waitForEnd(processEvents), 0) << "the box keeps nobody";
}

TEST_F(StatusItemTest, StandsInWhateverTrayComesAndComesAgain) {
  constexpr int side = 24;  // Of the embedding tray at the top right.
  const auto startTray = [] {
    return Process::start({"trayer", "--edge", "top", "--align", "right", "--height", std::to_string(side)});
  };
  const auto isEmbedded = [this] {
    int ink = 0;
    for (int y = 0; y < side; ++y)
      for (int x = screen_.width() - side; x < screen_.width(); ++x)
        if ((screen_.pixelAt(x, y) & 0xFF) < 0x50) ++ink;
    return ink > 60 && ink < side * side / 2;
  };
  /// Opens the menu and chooses its first item, at 0, or its last, at 1.
  const auto chooseByMouse = [this](int place) {
    screen_.click(screen_.width() - side / 2, side / 2);
    ASSERT_TRUE(waitFor([this] { return windows() == 1; }));
    const xcb_rectangle_t menu = screen_.geometryOf(screen_.windowsOfClass("Lumiscan")[0]);
    const int y = place == 0 ? menu.y + side / 2 : menu.y + menu.height - side / 2;
    int x = menu.x + menu.width / 2;
    const auto isHighlighted = [&] {
      screen_.moveMouse(++x, y);
      const std::uint32_t pixel = screen_.pixelAt(menu.x + 8, y);
      return (pixel & 0xFF) > 0x90 && (pixel >> 16 & 0xFF) < 0x60;  // Blue.
    };
    ASSERT_TRUE(waitFor(isHighlighted));
    screen_.buttonDown();
    screen_.buttonUp();
  };
  Process ground({"xsetroot", "-solid", "white"});
  ASSERT_EQ(ground.waitForEnd(), 0);

  startProgram();
  ASSERT_TRUE(waitFor([this] { return logged("no tray on this desktop") == 1; }));
  panel_.start();
  ASSERT_TRUE(isInPanel());
  panel_.stop();
  panel_.start();
  ASSERT_TRUE(isInPanel()) << "found again";
  panel_.stop();

  auto tray = startTray();
  ASSERT_TRUE(waitFor(isEmbedded));
  panel_.start();
  EXPECT_TRUE(waitFor([&] { return !isEmbedded(); })) << "one place is enough";
  panel_.stop();
  ASSERT_TRUE(waitFor(isEmbedded));
  tray = nullptr;
  ASSERT_TRUE(waitFor([&] { return !isEmbedded(); }));
  tray = startTray();
  ASSERT_TRUE(waitFor(isEmbedded)) << "found again";
  panel_.start();
  ASSERT_TRUE(waitFor([&] { return !isEmbedded(); }));
  busDaemon_.signal(SIGKILL);
  ASSERT_TRUE(waitFor(isEmbedded)) << "no panel without a bus";
  EXPECT_EQ(logged("no tray on this desktop"), 1);

  chooseByMouse(0);
  const auto captures = [this] {
    const auto overlays = screen_.windowsOfClass("Lumiscan");
    return overlays.size() == 1 && screen_.geometryOf(overlays[0]).width == screen_.width() &&
           !screen_.canGrabPointer();
  };
  ASSERT_TRUE(waitFor(captures)) << "the first item";
  screen_.pressKeys({KEY_ESC});
  ASSERT_TRUE(waitFor([this] { return windows() == 0 && screen_.canGrabPointer(); }));
  chooseByMouse(1);
  EXPECT_EQ(program_->waitForEnd(processEvents), 0) << "quits by the last item";
}

}  // namespace
}  // namespace lumiscan::testing
