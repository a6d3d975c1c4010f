// Capture sessions on the real desktop: two monitors, without and with a compositor, real drags, and every
// pixel of what they capture.

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QCoreApplication>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "capture/ScreenCaptureController.h"
#include "desktop/PrivateDesktop.h"
#include "platform/Application.h"
#include "platform/Display.h"
#include "platform/linux/LinuxDesktop.h"

namespace lumiscan::testing {
namespace {

void processEvents() {
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
}

bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, processEvents); }

class SessionTest : public ::testing::TestWithParam<const char*> {
 protected:
  /// `scales` as QT_SCREEN_SCALE_FACTORS takes them.
  void start(const char* scales = "") {
    private_.attachTwoMonitors();
    if (GetParam() == std::string("Compositor")) private_.startCompositor();
    setenv("QT_SCREEN_SCALE_FACTORS", scales, 1);
    private_.moveMouse(700, 400);
    private_.showPicture();
    picture_ = private_.screenPixels();
    startDesktop();
  }
  void startDesktop() {
    desktop_ = std::make_unique<desktop::LinuxDesktop>(argc_, argv_);
    platform::Application::shared();
    controller_ = std::make_shared<ScreenCaptureController>();
    processEvents();
  }
  void TearDown() override {
    controller_ = nullptr;
    desktop_ = nullptr;
    unsetenv("QT_SCREEN_SCALE_FACTORS");
  }

  CaptureCompletion noteEnd() {
    return
        [this](const CaptureOutcome& outcome, CaptureMode, LineBreaksOverride) { ends_.push_back(outcome); };
  }
  void begin() { controller_->begin(CaptureMode::text, std::nullopt, noteEnd()); }
  /// Begins a session and waits until it shows and has the user's input.
  void beginAndWait() {
    private_.moveMouse(700, 400);
    begin();
    ASSERT_TRUE(waitFor([this] { return overlays().size() == controller_->selectionWindows().size(); }));
    ASSERT_FALSE(private_.canGrabPointer() || private_.canGrabKeyboard());
    ASSERT_TRUE(waitFor([this] { return crosshairShows(); }));
  }
  bool crosshairShows() const { return private_.screenPixels() != picture_; }
  /// Returns when a session or a repeat ends; how.
  const CaptureOutcome& waitForEnd() {
    EXPECT_TRUE(waitFor([this] { return ends_.size() == 1; }));
    if (!ends_.empty()) last_ = ends_.front();
    ends_.clear();
    return last_;
  }
  bool isCancelled(const CaptureOutcome& outcome) {
    return std::holds_alternative<outcome::Cancelled>(outcome);
  }

  bool nobodyHoldsInput() const { return private_.canGrabPointer() && private_.canGrabKeyboard(); }
  std::vector<xcb_window_t> overlays() const { return private_.windowsOfClass("Lumiscan"); }
  void expectTheDesktopIsTheUsers() {
    EXPECT_TRUE(waitFor(
        [this] { return overlays().empty() && nobodyHoldsInput() && private_.screenPixels() == picture_; }));
  }
  /// Compares every pixel of what was captured with that part of the picture.
  void expectCaptured(const CaptureOutcome& end, int left, int top, int width, int height) {
    const auto* captured = std::get_if<outcome::Captured>(&end);
    ASSERT_TRUE(captured);
    const platform::Image& image = captured->image;
    ASSERT_EQ(image.width(), width);
    ASSERT_EQ(image.height(), height);
    int differences = 0;
    for (int y = 0; y < height; ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(image.row(y));
      for (int x = 0; x < width; ++x)
        if ((row[x] & 0xFFFFFF) != picture_[private_.indexOf(left + x, top + y)]) ++differences;
    }
    EXPECT_EQ(differences, 0);
  }

  PrivateDesktop private_;
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  int argc_ = 1;
  std::unique_ptr<desktop::LinuxDesktop> desktop_;
  std::shared_ptr<ScreenCaptureController> controller_;
  std::vector<std::uint32_t> picture_;
  std::vector<CaptureOutcome> ends_;
  CaptureOutcome last_ = outcome::Cancelled{};
};

TEST_P(SessionTest, CapturesWhatWasDraggedToThePixelOnEveryMonitor) {
  start();
  const auto cursor = private_.cursorSerial();
  beginAndWait();
  EXPECT_NE(private_.cursorSerial(), cursor);
  private_.drag(500, 0, 1279, 799);
  expectCaptured(waitForEnd(), 500, 0, 780, 800);
  expectTheDesktopIsTheUsers();

  beginAndWait();
  private_.drag(498, 699, 0, 100);
  expectCaptured(waitForEnd(), 0, 100, 499, 600);
  beginAndWait();
  private_.drag(123, 234, 345, 456);
  expectCaptured(waitForEnd(), 123, 234, 222, 222);
  // From one monitor to the other: cut to the one where it began.
  beginAndWait();
  private_.drag(600, 150, 300, 350);
  expectCaptured(waitForEnd(), 500, 150, 100, 200);
  controller_->repeatLast(CaptureMode::text, std::nullopt, noteEnd());
  expectCaptured(waitForEnd(), 500, 150, 100, 200);
  expectTheDesktopIsTheUsers();
}

TEST_P(SessionTest, IsRightAtFractionalAndDifferentScales) {
  for (const char* scales : {"MAIN=1.25;LEFT=1", "MAIN=1.5;LEFT=2", "MAIN=2;LEFT=1.25"}) {
    SCOPED_TRACE(scales);
    if (desktop_) {
      controller_ = nullptr;
      desktop_ = nullptr;
      setenv("QT_SCREEN_SCALE_FACTORS", scales, 1);
      startDesktop();
    } else {
      start(scales);
    }
    beginAndWait();
    for (const xcb_window_t overlay : overlays()) {
      const auto place = private_.geometryOf(overlay);
      const bool main = place.x == 500;
      EXPECT_EQ(place.width, main ? 780 : 499);
      EXPECT_EQ(place.height, main ? 800 : 600);
    }
    private_.drag(500, 0, 1279, 799);
    expectCaptured(waitForEnd(), 500, 0, 780, 800);
    beginAndWait();
    private_.drag(0, 100, 498, 699);
    expectCaptured(waitForEnd(), 0, 100, 499, 600);
    controller_->repeatLast(CaptureMode::text, std::nullopt, noteEnd());
    expectCaptured(waitForEnd(), 0, 100, 499, 600);
  }
}

TEST_P(SessionTest, ARepeatDuringASessionShowsNothingOfIt) {
  start();
  beginAndWait();
  private_.drag(520, 20, 1270, 780);
  waitForEnd();
  beginAndWait();
  for (int i = 0; i < 3; ++i) {
    controller_->repeatLast(CaptureMode::text, std::nullopt, noteEnd());
    private_.moveMouse(700 + i, 300);
    expectCaptured(waitForEnd(), 520, 20, 750, 760);
    EXPECT_TRUE(waitFor([this] { return crosshairShows(); })) << "the session goes on";
  }
  private_.pressKeys({KEY_ESC});
  EXPECT_TRUE(isCancelled(waitForEnd()));
  expectTheDesktopIsTheUsers();
}

TEST_P(SessionTest, IsAboveMenusAndTheirPixelsAreCaptured) {
  start();
  const auto menu = private_.showMenu(600, 200, 100, 100);
  ASSERT_TRUE(waitFor([this] { return private_.screenPixels() != picture_; }));
  picture_ = private_.screenPixels();
  beginAndWait();
  const auto windows = private_.windows();
  EXPECT_LT(std::ranges::find(windows, menu), std::ranges::find(windows, overlays().front()));
  private_.drag(650, 250, 800, 400);
  expectCaptured(waitForEnd(), 650, 250, 150, 150);
}

TEST_P(SessionTest, WhatIsFrozenHasNoOtherWindowOfOurs) {
  if (GetParam() == std::string("Compositor")) GTEST_SKIP() << "nothing is frozen";
  start();
  begin();
  // In the same event, before anything of the overlays is painted.
  const platform::Rect frame{{100, 600}, {200, 100}};
  const auto window = std::make_shared<platform::Window>(frame, platform::windowStyleBorderless);
  window->attributes().level = platform::windowLevelFloating;
  window->orderFrontRegardless();
  const auto onScreen = private_.indexOf(500 + 200, 150);
  ASSERT_TRUE(waitFor([&] { return private_.screenPixels()[onScreen] == 0xFFFFFF; }));
  private_.drag(510, 10, 1200, 700);
  expectCaptured(waitForEnd(), 510, 10, 690, 690);
}

TEST_P(SessionTest, MonitorsMayShowTheSame) {
  PrivateDesktop::setMonitor("BEAMER", "780/206x800/212+500+0", "none");
  start();
  ASSERT_EQ(platform::Displays::shared().screens().size(), 2U);
  for (int i = 0; i < 2; ++i) {
    beginAndWait();
    private_.drag(510, 10, 1200, 700);
    expectCaptured(waitForEnd(), 510, 10, 690, 690);
    expectTheDesktopIsTheUsers();
  }
}

TEST_P(SessionTest, WithoutTheUsersInputItEndsAndWithItItGoesOn) {
  start();
  for (const bool keyboard : {false, true}) {
    ASSERT_TRUE(keyboard ? private_.grabKeyboard() : private_.grabPointer());
    begin();
    EXPECT_TRUE(isCancelled(waitForEnd()));
    private_.ungrab();
    expectTheDesktopIsTheUsers();

    // A menu that closes in time.
    ASSERT_TRUE(keyboard ? private_.grabKeyboard() : private_.grabPointer());
    begin();
    EXPECT_TRUE(waitFor([this] { return crosshairShows(); }));
    private_.ungrab();
    EXPECT_TRUE(waitFor([this] { return !private_.canGrabPointer() && !private_.canGrabKeyboard(); }));
    private_.pressKeys({KEY_ESC});
    EXPECT_TRUE(isCancelled(waitForEnd()));
  }
}

TEST_P(SessionTest, ScreensMayChangeAtAnyTime) {
  start();
  const auto left = platform::Displays::shared().screens().at(1).displayID;
  beginAndWait();
  private_.drag(0, 100, 249, 400);
  expectCaptured(waitForEnd(), 0, 100, 249, 300);
  const auto repeat = [this]() -> const CaptureOutcome& {
    controller_->repeatLast(CaptureMode::text, std::nullopt, noteEnd());
    return waitForEnd();
  };

  // During a session: it ends, since what it covers is no longer there.
  beginAndWait();
  PrivateDesktop::detachMonitor("LEFT");
  EXPECT_TRUE(isCancelled(waitForEnd()));
  expectTheDesktopIsTheUsers();
  EXPECT_TRUE(std::holds_alternative<outcome::NoScreenAccess>(repeat()));

  // Back with half the size, after a restart of the program: the same part of the same display.
  PrivateDesktop::setMonitor("LEFT", "249/66x300/80+10+20", "none");
  controller_ = nullptr;
  desktop_ = nullptr;
  startDesktop();
  EXPECT_EQ(platform::Displays::shared().screens().at(1).displayID, left);
  expectCaptured(repeat(), 10, 20, 125, 150);
  beginAndWait();
  private_.drag(10, 20, 258, 319);
  expectCaptured(waitForEnd(), 10, 20, 249, 300);
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

/// What each open file of this process is, a line each.
std::string openFiles() {
  std::string lines;
  std::error_code gone;
  for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd"))
    lines += std::filesystem::read_symlink(file, gone).string() + "\n";
  return lines;
}

// LUMISCAN_SOAK_SESSIONS says how many sessions, in place of a few.
TEST_P(SessionTest, SoakLeavesNothingBehind) {
  start();
  const char* const wanted = std::getenv("LUMISCAN_SOAK_SESSIONS");
  const int sessions = wanted ? std::atoi(wanted) : 24;
  std::mt19937 random(1);
  const std::function<void()> endings[] = {
      [this] { private_.pressKeys({KEY_ESC}); },
      [this] {
        private_.pressKeys({KEY_LEFTMETA, KEY_DOT});
      },
      [this] { private_.drag(650, 300, 650, 300); },
      [this] { private_.drag(650, 300, 655, 500); },
      [this] { private_.drag(600, 300, 900, 500); },
      [this] { private_.drag(100, 200, 800, 700); },
      // In the middle of a drag.
      [this] {
        private_.moveMouse(700, 300);
        private_.buttonDown();
        private_.moveMouse(800, 500);
        private_.pressKeys({KEY_ESC});
        private_.buttonUp();
      },
      // Replaced by another session, or joined by a repeat.
      [this] {
        begin();
        processEvents();
        private_.pressKeys({KEY_ESC});
      },
      [this] {
        controller_->repeatLast(CaptureMode::text, std::nullopt, [](auto&&...) {});
        private_.pressKeys({KEY_ESC});
      },
      // Closed before it ever had the input.
      [this] {
        private_.pressKeys({KEY_ESC});
        waitForEnd();
        ASSERT_TRUE(waitFor([this] { return private_.grabKeyboard(); }));
        begin();
        waitFor([this] { return !ends_.empty(); });
        private_.ungrab();
      },
      // The desktop takes the input away.
      [this] {
        controller_->selectionWindows().front()->sendCancel();
        private_.pressKeys({KEY_ENTER});
      },
  };
  const auto windows = private_.windows();
  const auto cursor = private_.cursorSerial();
  std::pair<long, long> before;
  std::string filesBefore;
  for (int i = 0; i < sessions; ++i) {
    // The first ones fill caches and pools.
    if (i == sessions / 4) {
      before = footprint();
      filesBefore = openFiles();
    }
    const std::size_t ending = i < int(std::size(endings)) ? std::size_t(i) : random() % std::size(endings);
    SCOPED_TRACE("ending " + std::to_string(ending));
    begin();
    const bool atLeisure = random() % 2 == 0;
    ASSERT_TRUE(waitFor([&] { return !atLeisure || crosshairShows(); }));
    endings[ending]();
    waitForEnd();
    ASSERT_TRUE(waitFor([this] { return overlays().empty() && nobodyHoldsInput(); }));
  }
  private_.moveMouse(700, 400);
  expectTheDesktopIsTheUsers();
  EXPECT_EQ(private_.windows(), windows);
  EXPECT_EQ(private_.cursorSerial(), cursor);
  // A repeat may still be at it.
  EXPECT_TRUE(waitFor([&] { return footprint().second <= before.second; })) << "open files:\n"
                                                                            << openFiles() << "before:\n"
                                                                            << filesBefore;
#ifndef __SANITIZE_ADDRESS__  // Which keeps what was freed.
  // What was frozen for the last session goes a moment after it.
  EXPECT_TRUE(waitFor([&] { return footprint().first - before.first < 2048; }))
      << footprint().first << " KiB, " << before.first << " before";
#endif
}

INSTANTIATE_TEST_SUITE_P(, SessionTest, ::testing::Values("NoCompositor", "Compositor"),
                         [](const auto& run) { return std::string(run.param); });

}  // namespace
}  // namespace lumiscan::testing
