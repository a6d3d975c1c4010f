// The clipboard as other programs see it, and the result panel on a real screen.

#include <gtest/gtest.h>
#include <xcb/xfixes.h>

#include <QAction>
#include <QApplication>
#include <cmath>
#include <fstream>

#include "desktop/LinuxFixture.h"
#include "desktop/Servers.h"
#include "output/ClipboardService.h"
#include "output/ResultHUD.h"
#include "platform/Appearance.h"
#include "platform/Display.h"
#include "platform/linux/Menu.h"

namespace lumiscan::testing {
namespace {

struct OutputTest : ::testing::Test, protected LinuxFixture {
  void expectToEndSoon() {
    const auto start = std::chrono::steady_clock::now();
    end();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  }
  std::vector<xcb_window_t> panels() const { return screen().windowsOfClass("LumiscanPanel"); }

  /// 0xRRGGBB.
  static std::uint32_t panelGround() {
    const platform::Color color = platform::Appearance::current().panelMaterial();
    const auto channel = [](double value) { return static_cast<std::uint32_t>(std::lround(value * 255)); };
    return channel(color.red) << 16 | channel(color.green) << 8 | channel(color.blue);
  }
};

TEST_F(OutputTest, TheClipboardGivesTextsOfAnySizeToWhoeverAsks) {
  std::string large;
  while (large.size() < 10 << 20) large += "größer 文字 𝄞 " + std::to_string(large.size()) + "\n";
  ClipboardService::copy(large);
  processEvents();
  // Two read at once, and one of them has begun when the clipboard gets another text.
  Process first({"xclip", "-selection", "clipboard", "-out"});
  Process second({"xclip", "-selection", "clipboard", "-out", "-target", "text/plain;charset=utf-8"});
  ASSERT_TRUE(waitFor([&] { return !first.standardOutput().empty() || first.exitStatus(); }));
  EXPECT_EQ(first.waitForEnd(processEvents), 0);
  EXPECT_EQ(second.waitForEnd(processEvents), 0);
  EXPECT_TRUE(first.standardOutput() == large);
  EXPECT_TRUE(second.standardOutput() == large);

  // One that breaks off in the middle is in nobody's way.
  auto third = Process::start({"xclip", "-selection", "clipboard", "-out"});
  for (int i = 0; i < 3; ++i) processEvents();
  third = nullptr;
  ClipboardService::copy("Ä small text");
  processEvents();
  EXPECT_EQ(PrivateDesktop::clipboard(processEvents), "Ä small text");
  Process latin({"xclip", "-selection", "clipboard", "-out", "-target", "STRING"});
  EXPECT_EQ(latin.waitForEnd(processEvents), 0);
  EXPECT_EQ(latin.standardOutput(), "\xC4 small text");
}

TEST_F(OutputTest, NobodySeesAnEmptyClipboardAndALaterTextWins) {
  xcb_xfixes_select_selection_input(screen().x(), screen().root(), screen().atom("CLIPBOARD"),
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
  xcb_flush(screen().x());
  std::ofstream(screen().home() / "other") << "other";
  constexpr int rounds = 10;
  for (int i = 0; i < rounds; ++i) {
    // xclip stays in the background and owns the clipboard.
    Process other({"xclip", "-selection", "clipboard", "-in", screen().home() / "other"});
    ASSERT_EQ(other.waitForEnd(processEvents), 0);
    ASSERT_TRUE(waitUntil([] { return PrivateDesktop::clipboard(processEvents) == "other"; }));
    ClipboardService::copy("text " + std::to_string(i));
    processEvents();
    ASSERT_EQ(PrivateDesktop::clipboard(processEvents), "text " + std::to_string(i));
  }
  int changes = 0;
  while (const auto event = owned(xcb_poll_for_event(screen().x()))) {
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(*event);
    EXPECT_NE(change.owner, static_cast<xcb_window_t>(XCB_WINDOW_NONE));
    ++changes;
  }
  EXPECT_EQ(changes, 2 * rounds);
}

TEST_F(OutputTest, TheClipboardOutlivesItsConnection) {
  const auto breakConnection = [this] {
    xcb_kill_client(screen().x(), screen().selectionOwner("CLIPBOARD"));
    xcb_flush(screen().x());
    // No event is handled meanwhile: the program doesn't know it yet.
    EXPECT_TRUE(waitUntil([this] { return screen().selectionOwner("CLIPBOARD") == XCB_WINDOW_NONE; }));
  };
  ClipboardService::copy("kept");
  processEvents();
  for (int i = 0; i < 3; ++i) {
    breakConnection();
    ASSERT_TRUE(waitFor([this] { return screen().selectionOwner("CLIPBOARD") != XCB_WINDOW_NONE; }));
    EXPECT_EQ(PrivateDesktop::clipboard(processEvents), "kept");
  }

  // What another program has put there by then stays, until the next text.
  const xcb_window_t other = screen().showMenu(0, 0, 1, 1);
  const auto breakConnectionAndTake = [&] {
    breakConnection();
    xcb_set_selection_owner(screen().x(), other, screen().atom("CLIPBOARD"), XCB_TIME_CURRENT_TIME);
    xcb_flush(screen().x());
  };
  breakConnectionAndTake();
  for (int i = 0; i < 3; ++i) processEvents();
  EXPECT_EQ(screen().selectionOwner("CLIPBOARD"), other);
  for (const char* text : {"after that", "right after a break"}) {
    ClipboardService::copy(text);
    processEvents();
    EXPECT_EQ(PrivateDesktop::clipboard(processEvents), text);
    breakConnectionAndTake();
  }
}

TEST_F(OutputTest, AClipboardManagerKeepsTheTextWhenTheProgramEnds) {
  const std::string large(1 << 20, 'x');
  const PrivateBus bus;
  const Process manager({"env", "DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "xfce4-clipman"});
  ASSERT_TRUE(waitFor([this] { return screen().selectionOwner("CLIPBOARD_MANAGER") != XCB_WINDOW_NONE; }))
      << manager.standardError();
  ClipboardService::copy(large);
  expectToEndSoon();
  EXPECT_TRUE(waitUntil([&] { return PrivateDesktop::clipboard() == large; }));
}

TEST_F(OutputTest, AClipboardManagerThatHangsHoldsTheEndUpForLittle) {
  xcb_set_selection_owner(screen().x(), screen().showMenu(0, 0, 1, 1), screen().atom("CLIPBOARD_MANAGER"),
                          XCB_TIME_CURRENT_TIME);
  xcb_flush(screen().x());
  ClipboardService::copy("handed to nobody");
  EXPECT_EQ(PrivateDesktop::clipboard(processEvents), "handed to nobody");
  expectToEndSoon();
}

TEST_F(OutputTest, AMenuOfOursShowsTitlesAsTheyStand) {
  const auto menu = std::make_shared<platform::Menu>();
  for (const char* title : {"Capture & Speak", "&_ && two\nlines"}) {
    const auto item = std::make_shared<platform::MenuItem>();
    item->title = title;
    menu->addItem(item);
  }
  desktop::PopupMenu popup;
  popup.popUp(menu, {0, 0}, false);
  const QWidget* const shown = QApplication::activePopupWidget();
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->actions().at(0)->iconText(), "Capture & Speak") << "without mnemonics";
  EXPECT_EQ(shown->actions().at(1)->iconText(), "&_ && two lines");
}

TEST_F(OutputTest, ThePanelFloatsAboveEverythingWithoutFocusAndFadesAway) {
  for (const bool composited : {false, true}) {
    SCOPED_TRACE(composited ? "with a compositor" : "without a compositor");
    if (composited) screen().startCompositor();
    Process window({"xterm", "-class", "Full", "-fullscreen", "-bg", "#204060", "-e", "sleep 60"});
    ASSERT_TRUE(waitUntil([this] {
      const auto found = screen().windowsOfClass("Full");
      return !found.empty() && screen().focusedWindow() == found[0] && screen().pixelAt(640, 60) == 0x204060;
    }));
    const std::uint32_t ground = panelGround();

    const auto hud = std::make_shared<ResultHUD>();
    hud->show("Copied", std::nullopt, false, std::nullopt, 0.2);
    ASSERT_TRUE(waitFor([this] { return panels().size() == 1; }));
    const xcb_rectangle_t at = screen().geometryOf(panels()[0]);
    EXPECT_EQ(at.width, 240);
    EXPECT_EQ(at.x, (1280 - 240) / 2);
    EXPECT_EQ(at.y, 12);
    const int x = at.x + 200, y = at.y + 8;
    ASSERT_TRUE(waitFor([&] { return screen().pixelAt(x, y) == ground; })) << "above the full-screen window";
    EXPECT_NE(screen().pixelAt(at.x, at.y), ground) << "the corners are round";
    EXPECT_EQ(screen().focusedWindow(), screen().windowsOfClass("Full")[0]);
    screen().moveMouse(x, y);
    EXPECT_NE(screen().windowUnderMouse(), panels()[0]) << "the mouse reaches what is below";

    // Several steps, each darker than the one before, and then nothing.
    std::vector<std::uint32_t> shades;
    EXPECT_TRUE(waitFor([&] {
      const std::uint32_t red = screen().pixelAt(x, y) >> 16;
      if (shades.empty() || shades.back() != red) shades.push_back(red);
      return panels().empty();
    }));
    EXPECT_GE(shades.size(), 5U);
    EXPECT_TRUE(std::is_sorted(shades.rbegin(), shades.rend()));
    EXPECT_TRUE(waitFor([&] { return screen().pixelAt(x, y) == 0x204060; }));
  }
}

TEST_F(OutputTest, ThePanelStandsBelowTheBarsOfItsScreenAlone) {
  const auto showBar = [this](const std::string& property, const std::vector<std::uint32_t>& strut) {
    const xcb_window_t bar = screen().makeWindow(0, 0, 30, 30, 0, nullptr);
    const xcb_atom_t dock = screen().atom("_NET_WM_WINDOW_TYPE_DOCK");
    xcb_change_property(screen().x(), XCB_PROP_MODE_REPLACE, bar, screen().atom("_NET_WM_WINDOW_TYPE"),
                        XCB_ATOM_ATOM, 32, 1, &dock);
    xcb_change_property(screen().x(), XCB_PROP_MODE_REPLACE, bar, screen().atom(property), XCB_ATOM_CARDINAL,
                        32, static_cast<std::uint32_t>(strut.size()), strut.data());
    xcb_map_window(screen().x(), bar);
    xcb_flush(screen().x());
    return bar;
  };
  // Of both screens: how much is left of the width and the height.
  const auto freeIs = [](const std::vector<platform::Size>& sizes) {
    return waitFor([&] {
      std::vector<platform::Size> found;
      for (const platform::Screen& each : platform::Displays::shared().screens())
        found.push_back(each.visibleFrame.size);
      return found == sizes;
    });
  };
  const xcb_window_t top = showBar("_NET_WM_STRUT_PARTIAL", {0, 0, 30, 0, 0, 0, 0, 0, 500, 1279, 0, 0});
  EXPECT_TRUE(freeIs({{1280, 770}}));
  screen().attachTwoMonitors();
  EXPECT_TRUE(freeIs({{780, 770}, {499, 600}}));
  const xcb_window_t side = showBar("_NET_WM_STRUT", {40, 0, 0, 0});
  EXPECT_TRUE(freeIs({{780, 770}, {459, 600}}));
  const auto hud = std::make_shared<ResultHUD>();
  hud->show("Copied", std::nullopt, false, std::nullopt, 0.2);
  ASSERT_TRUE(waitFor([this] { return panels().size() == 1; }));
  EXPECT_EQ(screen().geometryOf(panels()[0]).y, 30 + 12);
  for (const xcb_window_t bar : {top, side}) screen().closeWindow(bar);
  EXPECT_TRUE(freeIs({{780, 800}, {499, 600}}));
}

TEST_F(OutputTest, ThePanelIsOnNoPicture) {
  for (const bool composited : {false, true}) {
    SCOPED_TRACE(composited ? "with a compositor" : "without a compositor");
    if (composited) screen().startCompositor();
    screen().showPicture();
    const auto before = screen().screenPixels();
    const auto hud = std::make_shared<ResultHUD>();
    // A compositor that has only just started paints its first translucent window black for a moment.
    hud->show("Before", std::nullopt, false, std::nullopt, 0.05);
    ASSERT_TRUE(waitFor([&] { return panels().empty(); }));
    ASSERT_TRUE(waitFor([&] { return screen().screenPixels() == before; }));
    hud->show("Copied");
    ASSERT_TRUE(waitFor([&] { return screen().pixelAt(720, 20) == panelGround(); }));
    auto& displays = platform::Displays::shared();
    const auto image = displays.createImage(displays.mainDisplayID());
    ASSERT_TRUE(image);
    EXPECT_EQ(differences(*image, before), 0);
  }
}

}  // namespace
}  // namespace lumiscan::testing
