// The clipboard as other programs see it, and the result panel on a real screen.

#include <gtest/gtest.h>
#include <xcb/xfixes.h>

#include <QCoreApplication>
#include <cmath>
#include <csignal>
#include <fstream>

#include "desktop/PrivateDesktop.h"
#include "output/ClipboardService.h"
#include "output/ResultHUD.h"
#include "platform/Appearance.h"
#include "platform/Application.h"
#include "platform/Display.h"
#include "platform/linux/LinuxDesktop.h"

namespace lumiscan::testing {
namespace {

class OutputTest : public ::testing::Test {
 protected:
  OutputTest() { platform::Application::shared(); }

  static void processEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); }
  static bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, processEvents); }
  std::vector<xcb_window_t> panels() const { return screen_.windowsOfClass("LumiscanPanel"); }

  /// 0xRRGGBB.
  static std::uint32_t panelGround() {
    const platform::Color color = platform::Appearance::current().panelMaterial();
    const auto channel = [](double value) { return static_cast<std::uint32_t>(std::lround(value * 255)); };
    return channel(color.red) << 16 | channel(color.green) << 8 | channel(color.blue);
  }

  PrivateDesktop screen_;
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  int argc_ = 1;
  std::unique_ptr<desktop::LinuxDesktop> desktop_ = std::make_unique<desktop::LinuxDesktop>(argc_, argv_);
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
  auto third =
      std::make_unique<Process>(std::vector<std::string>{"xclip", "-selection", "clipboard", "-out"});
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
  const auto request = xcb_intern_atom(screen_.x(), 0, 9, "CLIPBOARD");
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> clipboard(
      xcb_intern_atom_reply(screen_.x(), request, nullptr), &std::free);
  xcb_xfixes_select_selection_input(screen_.x(), screen_.root(), clipboard->atom,
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
  xcb_flush(screen_.x());
  std::ofstream(screen_.home() / "other") << "other";
  constexpr int rounds = 10;
  for (int i = 0; i < rounds; ++i) {
    // xclip stays in the background and owns the clipboard.
    Process other({"xclip", "-selection", "clipboard", "-in", screen_.home() / "other"});
    ASSERT_EQ(other.waitForEnd(processEvents), 0);
    ASSERT_TRUE(waitUntil([] { return PrivateDesktop::clipboard(processEvents) == "other"; }));
    ClipboardService::copy("text " + std::to_string(i));
    processEvents();
    ASSERT_EQ(PrivateDesktop::clipboard(processEvents), "text " + std::to_string(i));
  }
  int changes = 0;
  while (const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event{
      xcb_poll_for_event(screen_.x()), &std::free}) {
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(*event);
    EXPECT_NE(change.owner, static_cast<xcb_window_t>(XCB_WINDOW_NONE));
    ++changes;
  }
  EXPECT_EQ(changes, 2 * rounds);
}

TEST_F(OutputTest, AClipboardManagerKeepsTheTextWhenTheProgramEnds) {
  const std::string large(1 << 20, 'x');
  Process manager({"dbus-run-session", "--", "xfce4-clipman"});
  const auto managerRuns = [this] {
    const auto name = xcb_intern_atom(screen_.x(), 0, 17, "CLIPBOARD_MANAGER");
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(screen_.x(), name, nullptr), &std::free);
    const auto request = xcb_get_selection_owner(screen_.x(), atom->atom);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
        xcb_get_selection_owner_reply(screen_.x(), request, nullptr), &std::free);
    return owner->owner != XCB_WINDOW_NONE;
  };
  ASSERT_TRUE(waitFor(managerRuns)) << manager.standardError();
  ClipboardService::copy(large);
  const auto start = std::chrono::steady_clock::now();
  desktop_ = nullptr;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_TRUE(waitUntil([&] { return PrivateDesktop::clipboard() == large; }));
  manager.signal(SIGTERM);
  manager.waitForEnd();
}

TEST_F(OutputTest, AClipboardManagerThatHangsHoldsTheEndUpForLittle) {
  const auto name = xcb_intern_atom(screen_.x(), 0, 17, "CLIPBOARD_MANAGER");
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
      xcb_intern_atom_reply(screen_.x(), name, nullptr), &std::free);
  xcb_set_selection_owner(screen_.x(), screen_.showMenu(0, 0, 1, 1), atom->atom, XCB_TIME_CURRENT_TIME);
  xcb_flush(screen_.x());
  ClipboardService::copy("handed to nobody");
  EXPECT_EQ(PrivateDesktop::clipboard(processEvents), "handed to nobody");
  const auto start = std::chrono::steady_clock::now();
  desktop_ = nullptr;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(OutputTest, ThePanelFloatsAboveEverythingWithoutFocusAndFadesAway) {
  for (const bool composited : {false, true}) {
    SCOPED_TRACE(composited ? "with a compositor" : "without a compositor");
    if (composited) screen_.startCompositor();
    Process window({"xterm", "-class", "Full", "-fullscreen", "-bg", "#204060", "-e", "sleep 60"});
    ASSERT_TRUE(waitUntil([this] {
      const auto found = screen_.windowsOfClass("Full");
      return !found.empty() && screen_.focusedWindow() == found[0] && screen_.pixelAt(640, 60) == 0x204060;
    }));
    const std::uint32_t ground = panelGround();

    const auto hud = std::make_shared<ResultHUD>();
    hud->show("Copied", std::nullopt, false, std::nullopt, 0.2);
    ASSERT_TRUE(waitFor([this] { return panels().size() == 1; }));
    const xcb_rectangle_t at = screen_.geometryOf(panels()[0]);
    EXPECT_EQ(at.width, 240);
    EXPECT_EQ(at.x, (1280 - 240) / 2);
    EXPECT_EQ(at.y, 12);
    const int x = at.x + 200, y = at.y + 8;
    ASSERT_TRUE(waitFor([&] { return screen_.pixelAt(x, y) == ground; })) << "above the full-screen window";
    EXPECT_NE(screen_.pixelAt(at.x, at.y), ground) << "the corners are round";
    EXPECT_EQ(screen_.focusedWindow(), screen_.windowsOfClass("Full")[0]);
    screen_.moveMouse(x, y);
    const auto pointer = std::unique_ptr<xcb_query_pointer_reply_t, decltype(&std::free)>(
        xcb_query_pointer_reply(screen_.x(), xcb_query_pointer(screen_.x(), screen_.root()), nullptr),
        &std::free);
    EXPECT_NE(pointer->child, panels()[0]) << "the mouse reaches what is below";

    // Several steps, each darker than the one before, and then nothing.
    std::vector<std::uint32_t> shades;
    EXPECT_TRUE(waitFor([&] {
      const std::uint32_t red = screen_.pixelAt(x, y) >> 16;
      if (shades.empty() || shades.back() != red) shades.push_back(red);
      return panels().empty();
    }));
    EXPECT_GE(shades.size(), 5U);
    EXPECT_TRUE(std::is_sorted(shades.rbegin(), shades.rend()));
    EXPECT_TRUE(waitFor([&] { return screen_.pixelAt(x, y) == 0x204060; }));
  }
}

TEST_F(OutputTest, ThePanelIsOnNoPicture) {
  for (const bool composited : {false, true}) {
    SCOPED_TRACE(composited ? "with a compositor" : "without a compositor");
    if (composited) screen_.startCompositor();
    screen_.showPicture();
    const auto before = screen_.screenPixels();
    const auto hud = std::make_shared<ResultHUD>();
    // A compositor that has only just started paints its first translucent window black for a moment.
    hud->show("Before", std::nullopt, false, std::nullopt, 0.05);
    ASSERT_TRUE(waitFor([&] { return panels().empty(); }));
    ASSERT_TRUE(waitFor([&] { return screen_.screenPixels() == before; }));
    hud->show("Copied");
    ASSERT_TRUE(waitFor([&] { return screen_.pixelAt(720, 20) == panelGround(); }));
    auto& displays = platform::Displays::shared();
    const auto image = displays.createImage(displays.mainDisplayID());
    ASSERT_TRUE(image);
    int differences = 0;
    for (int y = 0; y < image->height(); ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(image->row(y));
      for (int x = 0; x < image->width(); ++x)
        differences += (row[x] & 0xFFFFFF) != before[screen_.indexOf(x, y)];
    }
    EXPECT_EQ(differences, 0);
  }
}

}  // namespace
}  // namespace lumiscan::testing
