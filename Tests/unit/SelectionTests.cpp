// What is cut out of a picture, kept of where that was, and captured again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "ControllerFixture.h"

namespace lumiscan {
namespace {

using platform::Data;
using platform::Rect;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Rect laptop{{0, 0}, {1440, 900}};
constexpr Rect belowLeft{{-1920, -180}, {1920, 1080}};
constexpr Rect above{{200, 900}, {1920, 1080}};
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(Crop, CutsTheSelectionInPixelsOfItsDisplay) {
  // Screens others than the laptop's are beside that, at scale 2.
  const std::tuple<const char*, Rect, double, Rect, std::string> cases[] = {
      {"plain", laptop, 1, {{100, 200}, {300, 150}}, "100,550 300×150"},
      {"a hair more", laptop, 1, {{100 + 1e-9, 200}, {300, 150}}, "100,550 300×150"},
      {"rounded outwards", laptop, 1.25, {{101, 200}, {33, 21}}, "126,848 42×27"},
      {"left of the main screen", belowLeft, 1.5, {{-1800, 0}, {100, 50}}, "180,1275 150×75"},
      {"above it", above, 1, {{210, 1000}, {20, 30}}, "10,950 20×30"},
      {"beyond the lower right", laptop, 1, {{1400, -50}, {100, 100}}, "1400,850 40×50"},
      {"beyond the upper left", laptop, 2, {{-10, 890}, {20, 20}}, "0,0 20×20"},
      {"four pixels once rounded", laptop, 1, {{7.5, 8}, {3.1, 4}}, "7,888 4×4"},
      {"too narrow", laptop, 1, {{7, 8}, {3, 40}}, "nothing"},
      {"too low", laptop, 1, {{7, 8}, {40, 3}}, "nothing"},
      {"above the display", laptop, 1, {{8, 2000}, {40, 40}}, "nothing"},
      {"not a number wide", laptop, 1, {{7, 8}, {notANumber, 40}}, "nothing"},
      {"not a number high", laptop, 1, {{7, 8}, {40, notANumber}}, "nothing"},
  };
  for (const auto& [name, frame, scale, selection, expected] : cases) {
    SCOPED_TRACE(name);
    testing::SimulatedDesktop desktop;
    desktop.displays().detach(1);
    const bool isMain = frame == laptop;
    platform::Screen screen = desktop.displays().attach(1, laptop, isMain ? scale : 2);
    if (!isMain) screen = desktop.displays().attach(2, frame, scale);
    const auto snapshot = desktop.displays().createImage(screen.displayID);
    const auto cropped = ScreenCaptureController::crop(*snapshot, selection, screen);
    EXPECT_EQ(cropped ? describe(*cropped) : "nothing", expected);
  }
}

const char* const example =
    R"({"displayID":1,"rect":[[0.06944444444444445,0.6111111111111112],[0.20833333333333334,0.16666666666666666]]})";

TEST(LastSelection, ReadsTheStoredFormAndNothingElse) {
  const LastSelection selection{7, {{0, 0.5}, {1, 1e-7}}};
  EXPECT_EQ(encoded(selection), R"({"displayID":7,"rect":[[0,0.5],[1,1e-07]]})");
  for (const char* same : {R"({"displayID":7,"rect":[[0,0.5],[1,1e-07]]})",
                           R"( {"rect": [[0.0, 5e-1], [1, 0.0000001]], "more": {}, "displayID": 7} )"})
    EXPECT_EQ(decodedLastSelection(same), selection) << same;
  EXPECT_EQ(decodedLastSelection(R"({"displayID":4294967295,"rect":[[0,0],[1,1]]})")->displayID, 4294967295U);
  for (const char* other :
       {"", "{}", "[]", "7", R"({"displayID":7})", R"({"rect":[[0,0],[1,1]]})",
        R"({"displayID":-1,"rect":[[0,0],[1,1]]})", R"({"displayID":4294967296,"rect":[[0,0],[1,1]]})",
        R"({"displayID":1.5,"rect":[[0,0],[1,1]]})", R"({"displayID":"7","rect":[[0,0],[1,1]]})",
        R"({"displayID":true,"rect":[[0,0],[1,1]]})", R"({"displayID":7,"rect":[0,0,1,1]})",
        R"({"displayID":7,"rect":[[0,0],[1]]})", R"({"displayID":7,"rect":[[0,0],[1,null]]})",
        R"({"displayID":7,"rect":[[0,0]]})", R"({"displayID":7,"rect":[[0,0],[1,1e999]]})",
        R"({"displayID":7,"rect":[[0,0],[1,1]])"})
    EXPECT_EQ(decodedLastSelection(other), std::nullopt) << other;
}

struct RepeatTest : ControllerFixture {
  void repeat() {
    controller->repeatLast(CaptureMode::barcode, true, noteEnd("repeat", CaptureMode::barcode, true));
  }
  void capture(platform::Point from, platform::Point to) {
    begin();
    drag(from, to);
  }
  void store(const char* json) { desktop.userDefaults().setObject("lastSelection", Data{json}); }
  std::optional<Data> stored() { return desktop.userDefaults().dataForKey("lastSelection"); }
  void replaceScreen(platform::Size size, double scale) {
    desktop.displays().detach(1);
    desktop.displays().attach(1, {{0, 0}, size}, scale);
  }
};

TEST_F(RepeatTest, CapturesTheSamePartOfTheDisplayWhateverItsSizeAndScale) {
  replaceScreen({1440, 900}, 2);
  capture({100, 200}, {400, 350});
  EXPECT_EQ(stored(), Data{example});
  repeat();
  desktop.settle();
  replaceScreen({1920, 1200}, 1);
  repeat();
  desktop.settle();
  EXPECT_THAT(
      ends, ElementsAre("session: 200,1100 600×300", "repeat: 200,1100 600×300", "repeat: 133,733 401×201"));
  EXPECT_EQ(stored(), Data{example}) << "a repeat stores nothing";
}

TEST_F(RepeatTest, OnlyASuccessfulSessionReplacesWhatIsStored) {
  store(example);
  begin();
  desktop.windows().keyDown(platform::keyCodeEscape);
  begin();
  desktop.advance(90);
  desktop.displays().images[1] = std::nullopt;
  capture({0, 0}, {50, 50});
  EXPECT_EQ(desktop.logSink().take().back(), "capture error: crop failed (snapshot nil: true)");
  desktop.displays().images[1] = testing::coordinateImage(8, 8);
  capture({20, 0}, {50, 50});
  EXPECT_EQ(desktop.logSink().take().back(), "capture error: crop failed (snapshot nil: false)");
  // Gone between the picture and its delivery: there is nothing to measure fractions of.
  begin();
  desktop.windows().dragMouse({0, 890}, {50, 900});
  desktop.runBackgroundTasks();
  desktop.displays().detach(1);
  desktop.settle();
  EXPECT_THAT(ends, ElementsAre("session: cancelled", "session: cancelled", "session: noScreenAccess",
                                "session: cancelled", "session: 0,0 8×8"));
  EXPECT_EQ(stored(), Data{example});
}

TEST_F(RepeatTest, WithNothingStoredEndsBeforeItReturns) {
  repeat();
  store("{}");
  repeat();
  desktop.userDefaults().setObject("lastSelection", std::string(example));
  repeat();
  EXPECT_THAT(ends, ::testing::Each("repeat: noPreviousSelection"));
  EXPECT_EQ(ends.size(), 3U);
  EXPECT_EQ(desktop.dispatcher().backgroundTaskCount(), 0U);
}

TEST_F(RepeatTest, TellsWhyNothingCouldBeCaptured) {
  const auto expectEnd = [this](const char* end) {
    repeat();
    EXPECT_THAT(ends, IsEmpty()) << "never before it returns";
    desktop.settle();
    EXPECT_THAT(std::exchange(ends, {}), ElementsAre(end));
  };
  store(R"({"displayID":2,"rect":[[0,0],[1,1]]})");
  expectEnd("repeat: noScreenAccess");
  EXPECT_THAT(desktop.displays().snapshots, IsEmpty()) << "of a display that isn't attached";
  store(R"({"displayID":1,"rect":[[0.5,0.5],[0.001,0.001]]})");
  expectEnd("repeat: cancelled");
  store(R"({"displayID":1,"rect":[[1,0],[0.5,0.5]]})");
  expectEnd("repeat: cancelled");
  store(example);
  desktop.displays().images[1] = std::nullopt;
  expectEnd("repeat: noScreenAccess");
  desktop.displays().accessGranted = false;
  desktop.displays().snapshots.clear();
  expectEnd("repeat: noScreenAccess");
  EXPECT_THAT(desktop.displays().snapshots, IsEmpty()) << "without access";
  EXPECT_THAT(desktop.logSink().take(), IsEmpty());
}

TEST_F(RepeatTest, LeavesAnOpenSessionAlone) {
  store(example);
  begin();
  repeat();
  repeat();
  EXPECT_EQ(desktop.dispatcher().backgroundTaskCount(), 2U);
  desktop.settle();
  EXPECT_THAT(ends, ElementsAre("repeat: 100,550 300×150", "repeat: 100,550 300×150"));
  EXPECT_FALSE(desktop.displays().snapshots[0].onMainThread);
  EXPECT_EQ(controller->selectionWindows().size(), 1U);
  EXPECT_EQ(desktop.cursors().pushed.size(), 1U);
  desktop.advance(90);
  EXPECT_EQ(ends.back(), "session: cancelled");
}

}  // namespace
}  // namespace lumiscan
