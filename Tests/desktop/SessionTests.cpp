// Capture sessions on the real desktop: two monitors, without and with a compositor, real drags, and every
// pixel of what they capture.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "capture/ScreenCaptureController.h"
#include "desktop/LinuxFixture.h"
#include "output/ResultHUD.h"
#include "platform/Display.h"
#include "platform/linux/x11/Display.h"

namespace lumiscan::testing {
namespace {

class SessionTest : public ::testing::TestWithParam<const char*>, protected LinuxFixture {
 protected:
  static bool isComposited() { return GetParam() == std::string("Compositor"); }
  void SetUp() override {
    screen().attachTwoMonitors();
    if (isComposited()) screen().startCompositor();
    screen().moveMouse(700, 400);
    screen().showPicture();
    picture_ = screen().screenPixels();
    startProgram();
  }
  /// Again, if it runs; `scales` as QT_SCREEN_SCALE_FACTORS takes them.
  void startProgram(const char* scales = "") {
    setenv("QT_SCREEN_SCALE_FACTORS", scales, 1);
    controller_ = nullptr;
    restart();
    controller_ = std::make_shared<ScreenCaptureController>();
    processEvents();
  }
  void TearDown() override { unsetenv("QT_SCREEN_SCALE_FACTORS"); }

  CaptureCompletion noteEnd() {
    return
        [this](const CaptureOutcome& outcome, CaptureMode, LineBreaksOverride) { ends_.push_back(outcome); };
  }
  void begin() { controller_->begin(CaptureMode::text, std::nullopt, noteEnd()); }
  void repeat() { controller_->repeatLast(CaptureMode::text, std::nullopt, noteEnd()); }
  /// Begins a session and waits until it shows and has the user's input.
  void beginAndWait() {
    screen().moveMouse(700, 400);
    begin();
    ASSERT_TRUE(waitFor([this] { return overlays().size() == controller_->selectionWindows().size(); }));
    ASSERT_TRUE(screen().inputIsTaken());
    ASSERT_TRUE(waitFor([this] { return crosshairIsAlone(); })) << "the rest shows as it is";
  }
  /// Whether the screen differs from the picture where the crosshair is, and only there: but for the one
  /// pixel by which each overlay finds out that a compositor has painted.
  bool crosshairIsAlone() const {
    constexpr int reach = 20;
    const auto now = screen().screenPixels();
    std::size_t changed = 0, elsewhere = 0;
    for (int y = 0; y < screen().height(); ++y)
      for (int x = 0; x < screen().width(); ++x) {
        if (now[screen().indexOf(x, y)] == picture_[screen().indexOf(x, y)]) continue;
        ++(std::abs(x - 700) > reach || std::abs(y - 400) > reach ? elsewhere : changed);
      }
    return changed > reach && elsewhere <= (isComposited() ? overlays().size() : 0);
  }
  bool crosshairShows() const { return screen().screenPixels() != picture_; }
  /// Returns when a session or a repeat ends; how.
  const CaptureOutcome& waitForEnd() {
    EXPECT_TRUE(waitFor([this] { return ends_.size() == 1; }));
    if (!ends_.empty()) last_ = ends_.front();
    ends_.clear();
    return last_;
  }
  void expectToBeCancelled() { EXPECT_TRUE(std::holds_alternative<outcome::Cancelled>(waitForEnd())); }
  /// A whole session.
  void drag(int fromX, int fromY, int toX, int toY) {
    beginAndWait();
    screen().drag(fromX, fromY, toX, toY);
  }

  std::vector<xcb_window_t> overlays() const { return screen().windowsOfClass("Lumiscan"); }
  void expectTheDesktopIsTheUsers() {
    EXPECT_TRUE(waitFor([this] {
      return overlays().empty() && screen().inputIsFree() && screen().screenPixels() == picture_;
    }));
  }
  /// Compares every pixel of what a session or a repeat captures with that part of the picture.
  void expectCaptured(int left, int top, int width, int height) {
    const auto* captured = std::get_if<outcome::Captured>(&waitForEnd());
    ASSERT_TRUE(captured);
    ASSERT_EQ(captured->image.width(), width);
    ASSERT_EQ(captured->image.height(), height);
    EXPECT_EQ(differences(captured->image, picture_, left, top), 0);
  }

  std::shared_ptr<ScreenCaptureController> controller_;
  std::vector<std::uint32_t> picture_;
  std::vector<CaptureOutcome> ends_;
  CaptureOutcome last_ = outcome::Cancelled{};
};

TEST_P(SessionTest, CapturesWhatWasDraggedToThePixelOnEveryMonitor) {
  const auto cursor = screen().cursorSerial();
  beginAndWait();
  EXPECT_NE(screen().cursorSerial(), cursor);
  screen().drag(500, 0, 1279, 799);
  expectCaptured(500, 0, 780, 800);
  expectTheDesktopIsTheUsers();

  drag(498, 699, 0, 100);
  expectCaptured(0, 100, 499, 600);
  beginAndWait();
  screen().click(600, 300, XCB_BUTTON_INDEX_3);  // The other buttons do nothing.
  screen().drag(123, 234, 345, 456);
  expectCaptured(123, 234, 222, 222);
  // Before anything beneath the overlay could paint itself again, and while the compositor, if there is one,
  // is busy with something else as the overlay goes.
  for (int i = 0; i < 3; ++i) {
    beginAndWait();
    screen().signalCompositor(SIGSTOP);
    screen().drag(520, 30, 1270, 780);
    std::thread busy([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      screen().signalCompositor(SIGCONT);
    });
    expectCaptured(520, 30, 750, 750);
    busy.join();
  }
  // From one monitor to the other: cut to the one where it began.
  drag(600, 150, 300, 350);
  expectCaptured(500, 150, 100, 200);
  repeat();
  expectCaptured(500, 150, 100, 200);
  expectTheDesktopIsTheUsers();
}

TEST_P(SessionTest, IsRightAtFractionalAndDifferentScales) {
  for (const char* scales : {"MAIN=1.25;LEFT=1", "MAIN=1.5;LEFT=2", "MAIN=2;LEFT=1.25"}) {
    SCOPED_TRACE(scales);
    startProgram(scales);
    beginAndWait();
    for (const xcb_window_t overlay : overlays()) {
      const auto place = screen().geometryOf(overlay);
      const bool main = place.x == 500;
      EXPECT_EQ(place.width, main ? 780 : 499);
      EXPECT_EQ(place.height, main ? 800 : 600);
    }
    screen().drag(500, 0, 1279, 799);
    expectCaptured(500, 0, 780, 800);
    drag(0, 100, 498, 699);
    expectCaptured(0, 100, 499, 600);
    repeat();
    expectCaptured(0, 100, 499, 600);
  }
}

TEST_P(SessionTest, ARepeatDuringASessionShowsNothingOfIt) {
  drag(520, 20, 1270, 780);
  waitForEnd();
  beginAndWait();
  for (int i = 0; i < 3; ++i) {
    repeat();
    screen().moveMouse(700 + i, 300);
    expectCaptured(520, 20, 750, 760);
    EXPECT_TRUE(waitFor([this] { return crosshairShows(); })) << "the session goes on";
  }
  screen().pressKeys({KEY_ESC});
  expectToBeCancelled();
  expectTheDesktopIsTheUsers();
}

TEST_P(SessionTest, EndsWithWhateverKeyTheUserHasMadeEscape) {
  Process({"setxkbmap", "-option", "caps:escape"}).waitForEnd(processEvents);
  beginAndWait();
  screen().pressKeys({KEY_CAPSLOCK});
  expectToBeCancelled();
}

TEST_P(SessionTest, IsAboveMenusAndTheirPixelsAreCaptured) {
  const auto menu = screen().showMenu(600, 200, 100, 100);
  ASSERT_TRUE(waitFor([this] { return screen().screenPixels() != picture_; }));
  picture_ = screen().screenPixels();
  beginAndWait();
  const auto windows = screen().windows();
  EXPECT_LT(std::ranges::find(windows, menu), std::ranges::find(windows, overlays().front()));
  screen().drag(650, 250, 800, 400);
  expectCaptured(650, 250, 150, 150);
}

TEST_P(SessionTest, WhatIsFrozenHasNoOtherWindowOfOurs) {
  if (isComposited()) GTEST_SKIP() << "nothing is frozen";
  begin();
  // In the same event, before anything of the overlays is painted.
  const platform::Rect frame{{100, 600}, {200, 100}};
  const auto window = std::make_shared<platform::Window>(frame, platform::windowStyleBorderless);
  window->attributes().level = platform::windowLevelFloating;
  window->orderFrontRegardless();
  const auto hud = std::make_shared<ResultHUD>();
  hud->show("Drag to select an area");
  ASSERT_TRUE(waitFor([this] { return screen().pixelAt(500 + 200, 150) == 0xFFFFFF; }));
  ASSERT_TRUE(waitFor([this] { return screen().pixelAt(890, 20) != picture_[screen().indexOf(890, 20)]; }));
  screen().drag(510, 10, 1200, 700);
  expectCaptured(510, 10, 690, 690);
}

TEST_P(SessionTest, MonitorsMayShowTheSame) {
  PrivateDesktop::setMonitor("BEAMER", "780/206x800/212+500+0", "none");
  startProgram();
  ASSERT_EQ(platform::Displays::shared().screens().size(), 2U);
  for (int i = 0; i < 2; ++i) {
    drag(510, 10, 1200, 700);
    expectCaptured(510, 10, 690, 690);
    expectTheDesktopIsTheUsers();
  }
}

TEST_P(SessionTest, WithoutTheUsersInputItEndsAndWithItItGoesOn) {
  for (const bool keyboard : {false, true}) {
    ASSERT_TRUE(keyboard ? screen().grabKeyboard() : screen().grabPointer());
    begin();
    expectToBeCancelled();
    screen().ungrab();
    expectTheDesktopIsTheUsers();

    // A menu that closes in time.
    ASSERT_TRUE(keyboard ? screen().grabKeyboard() : screen().grabPointer());
    begin();
    EXPECT_TRUE(waitFor([this] { return crosshairShows(); }));
    screen().ungrab();
    EXPECT_TRUE(waitFor([this] { return screen().inputIsTaken(); }));
    screen().pressKeys({KEY_ESC});
    expectToBeCancelled();
  }
}

TEST_P(SessionTest, ScreensMayChangeAtAnyTime) {
  const auto left = platform::Displays::shared().screens().at(1).displayID;
  drag(0, 100, 249, 400);
  expectCaptured(0, 100, 249, 300);

  // During a session: it ends, since what it covers is no longer there.
  beginAndWait();
  PrivateDesktop::detachMonitor("LEFT");
  expectToBeCancelled();
  expectTheDesktopIsTheUsers();
  repeat();
  EXPECT_TRUE(std::holds_alternative<outcome::NoScreenAccess>(waitForEnd()));

  // Back with half the size, after a restart of the program: the same part of the same display.
  PrivateDesktop::setMonitor("LEFT", "249/66x300/80+10+20", "none");
  startProgram();
  EXPECT_EQ(platform::Displays::shared().screens().at(1).displayID, left);
  repeat();
  expectCaptured(10, 20, 125, 150);
  drag(10, 20, 258, 319);
  expectCaptured(10, 20, 249, 300);

  // Smaller right after a session: what that froze of it is not taken for what it shows.
  beginAndWait();
  PrivateDesktop::detachMonitor("LEFT");
  expectToBeCancelled();
  PrivateDesktop::setMonitor("LEFT", "125/33x150/40+30+40", "none");
  repeat();
  expectCaptured(30, 40, 125, 150);
}

/// Kibibytes of memory that this process has to itself, and its open files.
std::pair<long, long> footprint() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long kibibytes = 0;
  while (status >> word)
    if (word == "RssAnon:") status >> kibibytes;
  const auto files = std::filesystem::directory_iterator("/proc/self/fd");
  return {kibibytes, std::distance(begin(files), end(files))};
}

// LUMISCAN_SOAK_SESSIONS says how many sessions, in place of a few.
TEST_P(SessionTest, SoakLeavesNothingBehind) {
  const char* const wanted = std::getenv("LUMISCAN_SOAK_SESSIONS");
  const int sessions = wanted ? std::atoi(wanted) : 24;
  std::mt19937 random(1);
  const std::function<void()> endings[] = {
      [this] { screen().pressKeys({KEY_ESC}); },
      [this] {
        screen().pressKeys({KEY_LEFTMETA, KEY_DOT});
      },
      [this] { screen().drag(650, 300, 650, 300); },
      [this] { screen().drag(650, 300, 655, 500); },
      [this] { screen().drag(600, 300, 900, 500); },
      [this] { screen().drag(100, 200, 800, 700); },
      // In the middle of a drag.
      [this] {
        screen().beginDrag(700, 300, 800, 500);
        screen().pressKeys({KEY_ESC});
        screen().buttonUp();
      },
      // Replaced by another session, or joined by a repeat.
      [this] {
        begin();
        processEvents();
        screen().pressKeys({KEY_ESC});
      },
      [this] {
        controller_->repeatLast(CaptureMode::text, std::nullopt, [](auto&&...) {});
        screen().pressKeys({KEY_ESC});
      },
      // Closed before it ever had the input.
      [this] {
        screen().pressKeys({KEY_ESC});
        waitForEnd();
        ASSERT_TRUE(waitFor([this] { return screen().grabKeyboard(); }));
        begin();
        waitFor([this] { return !ends_.empty(); });
        screen().ungrab();
      },
      // The desktop takes the input away.
      [this] {
        controller_->selectionWindows().front()->sendCancel();
        screen().pressKeys({KEY_ENTER});
      },
  };
  const auto windows = screen().windows();
  const auto cursor = screen().cursorSerial();
  std::pair<long, long> before;
  for (int i = 0; i < sessions; ++i) {
    // The first ones fill caches and pools.
    if (i == sessions / 4) before = footprint();
    const std::size_t ending = i < int(std::size(endings)) ? std::size_t(i) : random() % std::size(endings);
    SCOPED_TRACE("ending " + std::to_string(ending));
    begin();
    const bool atLeisure = random() % 2 == 0;
    ASSERT_TRUE(waitFor([&] { return !atLeisure || crosshairShows(); }));
    endings[ending]();
    waitForEnd();
    ASSERT_TRUE(waitFor([this] { return overlays().empty() && screen().inputIsFree(); }));
  }
  screen().moveMouse(700, 400);
  expectTheDesktopIsTheUsers();
  EXPECT_EQ(screen().windows(), windows);
  EXPECT_EQ(screen().cursorSerial(), cursor);
  // A repeat may still be at it.
  EXPECT_TRUE(waitFor([&] { return footprint().second <= before.second; }))
      << footprint().second << " open files, " << before.second << " before";
#ifndef __SANITIZE_ADDRESS__  // Which keeps what was freed.
  // What was frozen for the last session goes a moment after it.
  EXPECT_TRUE(waitFor([&] { return footprint().first - before.first < 2048; }))
      << footprint().first << " KiB, " << before.first << " before";
#endif
}

TEST(Snapshot, OfAScreenWithOtherPixelsIsNone) {
  const PrivateDesktop desktop(1280, 800, 16);
  desktop::x11::X11Displays displays;
  ASSERT_NE(displays.mainDisplayID(), 0U);
  EXPECT_EQ(displays.createImage(displays.mainDisplayID()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, SessionTest, ::testing::Values("NoCompositor", "Compositor"),
                         [](const auto& run) { return std::string(run.param); });

}  // namespace
}  // namespace lumiscan::testing
