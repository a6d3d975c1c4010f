// The status item in trays of both kinds: a panel of our own that asks over D-Bus, and one that embeds
// windows.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QDBusObjectPath>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>

#include "desktop/PrivateDesktop.h"
#include "desktop/Servers.h"
#include "desktop/TrayPanel.h"

namespace lumiscan::testing {
namespace {

using desktop::statusnotifier::MenuItemProperties;
using desktop::statusnotifier::MenuLayout;
using desktop::statusnotifier::Pixmap;

class StatusItemTest : public ::testing::Test, protected EventLoop {
 protected:
  StatusItemTest() {
    setenv("DBUS_SESSION_BUS_ADDRESS", busDaemon_.address().c_str(), 1);
    setenv("TZ", "UTC", 1);
  }

  void startProgram() { program_ = Process::start({LUMISCAN_PROGRAM}); }
  bool isInPanel() {
    return waitFor([this] { return !panel_.item().isEmpty(); });
  }
  void startInPanel() {
    ASSERT_TRUE(panel_.start());
    startProgram();
    ASSERT_TRUE(isInPanel());
  }
  long logged(const std::string& line) const { return program_->countInError(line); }

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
  void click(const QString& label) {
    const auto id = idOf(panel_.layout(), label);
    ASSERT_TRUE(id) << label.toStdString();
    panel_.click(*id);
  }
  std::size_t windows() const { return screen_.windowsOfClass("Lumiscan").size(); }

  PrivateDesktop screen_;
  PrivateBus busDaemon_{"unix:path=" + (screen_.home() / "bus").string()};
  TrayPanel panel_{busDaemon_.address()};
  std::unique_ptr<Process> program_;
};

TEST_F(StatusItemTest, APanelReadsAndChoosesOverTheBus) {
  const QByteArray history = R"([{"id":"0F9A3B5C-1D2E-4F60-8A7B-9C0D1E2F3A4B","date":60,"mode":"barcode",)"
                             R"("text":"snake_case & <b>\r_\nmore"}])";
  screen_.writePreferences(R"({"captureHistory": {"data": ")" + history.toBase64().toStdString() + R"("}})");
  startInPanel();

  const QVariantMap item = panel_.itemProperties();
  EXPECT_TRUE(item["ItemIsMenu"].toBool());
  EXPECT_EQ(item["Menu"].value<QDBusObjectPath>().path(), "/MenuBar");
  EXPECT_EQ(qdbus_cast<desktop::statusnotifier::ToolTip>(item["ToolTip"]).title,
            "Lumiscan — instant text capture by Varnholt");
  for (const Pixmap& pixmap : qdbus_cast<QList<Pixmap>>(item["IconPixmap"])) {
    EXPECT_EQ(pixmap.bytes.size(), pixmap.width * pixmap.height * 4);
    EXPECT_TRUE(pixmap.bytes.contains('\xFF') && pixmap.bytes.contains('\x00'));
  }

  ASSERT_EQ(panel_.layout().children.size(), 17U);
  const auto line = [this](std::size_t place) { return lines(panel_.layout()).at(place); };
  EXPECT_EQ(line(0), "Capture Text\t⇧⌘2");
  EXPECT_EQ(line(2), "Capture & Speak\t⌃⌥⌘S");
  EXPECT_EQ(line(6), "---");
  EXPECT_EQ(line(7), "Additive Clipboard");
  EXPECT_EQ(line(10), "Recent Captures ▸");
  click("Additive Clipboard");
  EXPECT_TRUE(waitFor([&] { return line(7) == "✓ Additive Clipboard"; }));

  const long registrations = logged("hotkeys registered");
  EXPECT_FALSE(panel_.aboutToShow(0)) << "nothing to read anew";
  EXPECT_EQ(logged("hotkeys registered"), registrations + 1);

  const int historyID = idOf(panel_.layout(), "Recent Captures").value();
  const QString label = "00:01  [code] snake__case & <b> __";
  EXPECT_TRUE(panel_.aboutToShow(historyID));
  const int entry = idOf(panel_.layout(historyID), label).value();
  const auto group =
      panel_.callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>{entry}), QStringList()});
  EXPECT_EQ(qdbus_cast<QList<MenuItemProperties>>(group.arguments().at(0)).at(0).properties,
            (QVariantMap{{"label", label}}))
      << "the whole text stays where it is";
  panel_.click(entry);
  EXPECT_TRUE(waitFor([] { return PrivateDesktop::clipboard() == "snake_case & <b>\r_\nmore"; }));
  click("Clear History");
  EXPECT_TRUE(waitFor([&] {
    panel_.aboutToShow(historyID);
    return lines(panel_.layout(historyID)) == std::vector<std::string>{"(No captures yet)"};
  }));

  click("About Lumiscan");
  ASSERT_TRUE(waitFor([this] { return windows() == 1; }));
  click("Quit Lumiscan");
  EXPECT_EQ(program_->waitForEnd(processEvents), 0) << "the box keeps nobody";
}

TEST_F(StatusItemTest, TellsTheInstalledIconsNameToPanelsThatTintIt) {
  unsetenv("XDG_DATA_HOME");
  const auto icons = screen_.home() / ".local/share/icons/hicolor/symbolic/apps";
  std::filesystem::create_directories(icons);
  std::ofstream(icons / "com.varnholt.Lumiscan-symbolic.svg") << "<svg/>";
  for (const auto& [desktop, name] : std::map<const char*, QString>{
           {"ubuntu:GNOME", "com.varnholt.Lumiscan-symbolic"}, {"Lubuntu:LXQt", ""}}) {
    setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    startInPanel();
    EXPECT_EQ(panel_.itemProperties().value("IconName", "none").toString(), name) << desktop;
    program_ = nullptr;
    ASSERT_TRUE(panel_.stop());
  }
  unsetenv("XDG_CURRENT_DESKTOP");
}

TEST_F(StatusItemTest, TheAboutBoxComesBeforeTheSettingsWindow) {
  const auto settingsHaveKeys = [this] {
    for (int i = 0; i < 3; ++i) screen_.pressKeys({KEY_TAB});
    screen_.pressKeys({KEY_SPACE});
    return waitFor([this] { return lines(panel_.layout()).at(7) == "✓ Additive Clipboard"; });
  };
  startInPanel();
  click("About Lumiscan");
  xcb_window_t box = XCB_WINDOW_NONE;
  const auto boxHasFocus = [&] { return screen_.focusedWindow() == box; };
  ASSERT_TRUE(waitFor([&] {
    const auto shown = screen_.windowsOfClass("Lumiscan");
    if (shown.size() == 1) box = shown.front();
    return box != XCB_WINDOW_NONE && boxHasFocus();
  }));

  // The user goes on elsewhere.
  const Process other({"xterm", "-geometry", "140x55"});
  ASSERT_TRUE(waitFor([&] { return screen_.windowsOfClass("XTerm").size() == 1 && !boxHasFocus(); }));
  screen_.pressKeys({KEY_A});
  click("About Lumiscan");
  EXPECT_TRUE(waitFor(boxHasFocus)) << "the box that is open";
  EXPECT_EQ(windows(), 1U);
  EXPECT_EQ(panel_.layout().children.size(), 17U) << "a box in front holds nothing up";
  screen_.click(10, screen_.height() / 2);
  screen_.pressKeys({KEY_A});
  ASSERT_TRUE(waitFor([&] { return !boxHasFocus(); }));
  click("Settings…");
  ASSERT_TRUE(waitFor([&] { return windows() == 2 && boxHasFocus(); }));
  screen_.pressKeys({KEY_ENTER});
  ASSERT_TRUE(waitFor([this] {
    const auto shown = screen_.windowsOfClass("Lumiscan");
    return shown.size() == 1 && screen_.focusedWindow() == shown.front();
  }));
  EXPECT_TRUE(settingsHaveKeys()) << "and the menu follows its fourth switch";
}

TEST_F(StatusItemTest, StandsInWhateverTrayComesAndComesAgain) {
  constexpr int side = 24;  // Of the embedding tray at the top right.
  const auto startTray = [] {
    return Process::start({"trayer", "--edge", "top", "--align", "right", "--height", std::to_string(side)});
  };
  const auto isEmbedded = [this] {
    const auto pixels = screen_.pixels(screen_.width() - side, 0, side, side);
    const auto ink = std::ranges::count_if(pixels, [](auto pixel) { return (pixel & 0xFF) < 0x50; });
    return ink > 60 && ink < side * side / 2;
  };
  /// Opens the menu and chooses its first item, at 0, or its last, at 1.
  const auto chooseByMouse = [this](int place) {
    screen_.moveMouse(screen_.width() - side / 2, side / 2);
    screen_.buttonDown();
    ASSERT_TRUE(waitFor([this] { return windows() == 1 && screen_.inputIsTaken(); }));
    screen_.buttonUp();
    ASSERT_TRUE(screen_.inputIsTaken()) << "by the menu, no more by the press";
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
  ASSERT_TRUE(panel_.start());
  ASSERT_TRUE(isInPanel());
  ASSERT_TRUE(panel_.stop());
  ASSERT_TRUE(panel_.start());
  ASSERT_TRUE(isInPanel()) << "found again";
  ASSERT_TRUE(panel_.stop());

  auto tray = startTray();
  ASSERT_TRUE(waitFor(isEmbedded));
  ASSERT_TRUE(panel_.start());
  EXPECT_TRUE(waitFor([&] { return !isEmbedded(); })) << "one place is enough";
  ASSERT_TRUE(panel_.stop());
  ASSERT_TRUE(waitFor(isEmbedded));
  tray = nullptr;
  ASSERT_TRUE(waitFor([&] { return !isEmbedded(); }));
  tray = startTray();
  ASSERT_TRUE(waitFor(isEmbedded)) << "found again";
  ASSERT_TRUE(panel_.start());
  ASSERT_TRUE(waitFor([&] { return !isEmbedded(); }));
  // From now on that tray names the colour of its foreground, the first of four: red.
  const std::uint32_t colors[12] = {0xFFFF, 0, 0};
  xcb_change_property(screen_.x(), XCB_PROP_MODE_REPLACE, screen_.selectionOwner("_NET_SYSTEM_TRAY_S0"),
                      screen_.atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL, 32, 12, colors);
  xcb_flush(screen_.x());
  busDaemon_.signal(SIGKILL);
  ASSERT_TRUE(waitFor(isEmbedded)) << "no panel without a bus";
  EXPECT_TRUE(waitFor([this] {
    const auto pixels = screen_.screenPixels();
    return std::ranges::count(pixels, 0xFF0000U) > 20;
  })) << "the icon's lines";
  EXPECT_EQ(logged("no tray on this desktop"), 1);

  chooseByMouse(0);
  const auto captures = [this] {
    const auto overlays = screen_.windowsOfClass("Lumiscan");
    return overlays.size() == 1 && screen_.geometryOf(overlays[0]).width == screen_.width() &&
           screen_.inputIsTaken();
  };
  ASSERT_TRUE(waitFor(captures)) << "the first item";
  screen_.pressKeys({KEY_ESC});
  ASSERT_TRUE(waitFor([this] { return windows() == 0 && screen_.inputIsFree(); }));
  chooseByMouse(1);
  EXPECT_EQ(program_->waitForEnd(processEvents), 0) << "quits by the last item";
}

TEST_F(StatusItemTest, StandsInThePanelOfABusThatComesLateOrAgain) {
  busDaemon_.signal(SIGKILL);
  busDaemon_.waitForEnd();
  startProgram();
  ASSERT_TRUE(waitFor([this] { return screen_.shortcutIsTaken(); }));

  // The first one hangs before the program can find it.
  const std::string socket = screen_.home() / "first";
  const PrivateBus first("unix:path=" + socket);
  first.signal(SIGSTOP);
  std::filesystem::rename(socket, screen_.home() / "bus");
  const auto isTried = [&socket] {
    std::ifstream sockets("/proc/net/unix");
    int ends = 0;
    for (std::string line; std::getline(sockets, line);) ends += line.ends_with(socket);
    return ends > 1;
  };
  ASSERT_TRUE(waitFor(isTried));
  screen_.pressKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
  ASSERT_TRUE(waitFor([this] { return windows() == 1 && screen_.inputIsTaken(); })) << "not waited for";
  screen_.pressKeys({KEY_ESC});
  ASSERT_TRUE(waitFor([this] { return windows() == 0; }));
  first.signal(SIGCONT);
  TrayPanel panel(busDaemon_.address());
  ASSERT_TRUE(panel.start());
  EXPECT_TRUE(waitFor([&panel] { return !panel.item().isEmpty(); }));

  first.signal(SIGKILL);
  ASSERT_TRUE(waitFor([this] { return logged("the session bus has ended") == 1; }));
  const PrivateBus second(busDaemon_.address());
  TrayPanel again(second.address());
  ASSERT_TRUE(again.start());
  ASSERT_TRUE(waitFor([&again] { return !again.item().isEmpty(); }));
  EXPECT_EQ(again.layout().children.size(), 17U);
  again.click(idOf(again.layout(), "Quit Lumiscan").value());
  EXPECT_EQ(program_->waitForEnd(processEvents), 0);
}

}  // namespace
}  // namespace lumiscan::testing
