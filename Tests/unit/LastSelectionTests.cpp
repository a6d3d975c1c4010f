#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CaptureDescription.h"
#include "capture/ScreenCaptureController.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using platform::Data;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

class RepeatTest : public ::testing::Test {
 protected:
  CaptureCompletion completion(const std::string& name) {
    return [=, this](const CaptureOutcome& outcome, CaptureMode mode, LineBreaksOverride lineBreaks) {
      EXPECT_TRUE(desktop.dispatcher().isMainThread());
      EXPECT_EQ(mode, CaptureMode::barcode);
      EXPECT_EQ(lineBreaks, true);
      ends.push_back(name + ": " + describe(outcome));
    };
  }
  void begin() { controller->begin(CaptureMode::barcode, true, completion("session")); }
  void repeat() { controller->repeatLast(CaptureMode::barcode, true, completion("repeat")); }
  void capture(platform::Point from, platform::Point to) {
    begin();
    desktop.windows().dragMouse(from, to);
    desktop.settle();
  }
  void store(const char* json) { desktop.userDefaults().setObject("lastSelection", Data{json}); }
  std::optional<Data> stored() { return desktop.userDefaults().dataForKey("lastSelection"); }
  void replaceScreen(platform::Size size, double scale) {
    desktop.displays().detach(1);
    desktop.displays().attach(1, {{0, 0}, size}, scale);
  }

  testing::SimulatedDesktop desktop;
  std::shared_ptr<ScreenCaptureController> controller = std::make_shared<ScreenCaptureController>();
  std::vector<std::string> ends;
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

TEST_F(RepeatTest, FindsDisplaysLeftOfTheMainOneAndAboveIt) {
  desktop.displays().attach(2, {{-1920, 900}, {1920, 1080}}, 1.5);
  capture({-1920, 1440}, {-960, 1980});
  EXPECT_EQ(stored(), Data{R"({"displayID":2,"rect":[[0,0],[0.5,0.5]]})"});
  repeat();
  desktop.settle();
  EXPECT_EQ(ends.back(), "repeat: 0,0 1440×810");
}

TEST_F(RepeatTest, OnlyASuccessfulSessionReplacesWhatIsStored) {
  store(example);
  begin();
  desktop.windows().keyDown(platform::keyCodeEscape);
  begin();
  desktop.advance(90);
  desktop.displays().setImage(1, std::nullopt);
  capture({0, 0}, {50, 50});
  desktop.displays().setImage(1, testing::coordinateImage(8, 8));
  capture({20, 0}, {50, 50});
  // Gone between the picture and its delivery: there is nothing to measure fractions of.
  begin();
  desktop.windows().dragMouse({0, 890}, {50, 900});
  desktop.runBackgroundTasks();
  desktop.displays().detach(1);
  desktop.settle();
  EXPECT_EQ(ends.back(), "session: 0,0 8×8");
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
  desktop.displays().setImage(1, std::nullopt);
  expectEnd("repeat: noScreenAccess");
  desktop.displays().accessGranted = false;
  desktop.displays().snapshots.clear();
  expectEnd("repeat: noScreenAccess");
  EXPECT_THAT(desktop.displays().snapshots, IsEmpty()) << "without access";
  EXPECT_THAT(desktop.logSink().lines, IsEmpty());
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
