#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ControllerFixture.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct CaptureSessionTest : ControllerFixture {
  std::vector<std::string> logged() { return desktop.logSink().take(); }
  void expectNothingShows() {
    EXPECT_THAT(controller->selectionWindows(), IsEmpty());
    EXPECT_THAT(desktop.windows().visible(), IsEmpty());
    EXPECT_THAT(desktop.cursors().pushed, IsEmpty());
  }
};

TEST_F(CaptureSessionTest, WithoutAccessABeginEndsAtOnceAndLeavesAnOpenSessionAlone) {
  desktop.displays().accessGranted = false;
  begin("denied", CaptureMode::barcode, true);
  EXPECT_THAT(ends, ElementsAre("denied: noScreenAccess"));
  expectNothingShows();
  EXPECT_EQ(desktop.displays().accessRequests, 0);
  EXPECT_THAT(logged(), ElementsAre("capture error: begin denied: no screen recording access"));

  desktop.displays().accessGranted = true;
  begin("open");
  desktop.displays().accessGranted = false;
  begin("denied", CaptureMode::barcode, false);
  EXPECT_EQ(controller->selectionWindows().size(), 1U);
  desktop.displays().accessGranted = true;
  drag();
  EXPECT_EQ(ends.back(), "open: 100,550 300×150");
}

TEST_F(CaptureSessionTest, CoversEveryScreenWithTheFocusUnderTheMouse) {
  const auto second = desktop.displays().attach(2, {{-1920, -180}, {1920, 1080}}, 1.5);
  desktop.displays().attach(3, {{1440, 0}, {1280, 1024}});
  desktop.windows().mouseLocation = {-1, 100};
  begin();
  ASSERT_EQ(controller->selectionWindows().size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    const SelectionWindow& overlay = *controller->selectionWindows()[i];
    EXPECT_EQ(overlay.frame(), desktop.displays().screens()[i].frame);
    EXPECT_TRUE(overlay.isVisible());
  }
  EXPECT_EQ(controller->selectionWindows()[1]->targetScreen(), second);
  EXPECT_TRUE(controller->selectionWindows()[1]->isKeyWindow());
  EXPECT_EQ(desktop.application().activations, 1);
  EXPECT_THAT(desktop.cursors().pushed, ElementsAre(platform::CursorShape::crosshair));
  EXPECT_THAT(logged(), ElementsAre("capture: selection surfaces shown: 3"));
  EXPECT_EQ(desktop.logSink().lastSubsystem, "com.varnholt.Lumiscan");
}

TEST_F(CaptureSessionTest, ConfirmationCapturesAfterTheOverlaysHaveGone) {
  begin("session", CaptureMode::textToSpeech, false);
  logged();
  desktop.windows().dragMouse({100, 200}, {400, 350});
  expectNothingShows();
  EXPECT_THAT(ends, IsEmpty());
  EXPECT_THAT(logged(),
              ElementsAre("capture: view mouseDown", "capture: view mouseUp window=true rect=300x150",
                          "capture: selection confirmed 300×150"));
  EXPECT_EQ(desktop.dispatcher().priorityOfNextTask(), platform::TaskPriority::userInteractive);
  desktop.settle();
  EXPECT_THAT(ends, ElementsAre("session: 100,550 300×150"));
  ASSERT_EQ(desktop.displays().snapshots.size(), 1U);
  EXPECT_EQ(desktop.displays().snapshots[0].display, 1U);
  EXPECT_FALSE(desktop.displays().snapshots[0].onMainThread);
  EXPECT_FALSE(desktop.displays().snapshots[0].windowsShowed);
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(CaptureSessionTest, CancelsByKeyClickOrTooSmallARectangle) {
  constexpr auto command = platform::modifierCommand | platform::modifierCapsLock;
  std::vector<std::function<void()>> cancels = {
      [this] { desktop.windows().keyDown(platform::keyCodeEscape); },
      [this] { desktop.windows().keyDown(platform::keyCodePeriod, command); },
      [this] { controller->selectionWindows()[0]->sendCancel(); },
  };
  for (const platform::Point end : {platform::Point{100, 200}, {105.9, 300}, {300, 194.1}})
    cancels.emplace_back([this, end] { drag({100, 200}, end); });
  for (const auto& cancel : cancels) {
    ends.clear();
    begin();
    desktop.windows().keyDown(platform::keyCodePeriod);
    desktop.windows().keyDown(0, platform::modifierCommand);
    EXPECT_THAT(ends, IsEmpty()) << "other keys don't end the session";
    cancel();
    EXPECT_THAT(ends, ElementsAre("session: cancelled"));
    expectNothingShows();
    EXPECT_EQ(logged().back(), "capture: selection cancelled");
  }
  EXPECT_THAT(desktop.displays().snapshots, IsEmpty());
}

TEST_F(CaptureSessionTest, WatchdogCancelsASessionLeftOpenFor90SecondsAndNoOther) {
  begin("cancelled");
  desktop.windows().keyDown(platform::keyCodeEscape);
  begin("smallest");
  drag({106, 206}, {100, 200});
  desktop.advance(80);
  begin("left open");
  logged();
  desktop.advance(89.9);
  EXPECT_EQ(ends.size(), 2U);
  desktop.advance(0.1);
  EXPECT_THAT(ends, ElementsAre("cancelled: cancelled", "smallest: 100,694 6×6", "left open: cancelled"));
  EXPECT_THAT(logged(), ElementsAre("capture error: session watchdog: auto-cancel after timeout"));
  expectNothingShows();
}

TEST_F(CaptureSessionTest, SecondBeginReplacesTheOpenSession) {
  begin("replaced");
  const auto old = controller->selectionWindows()[0];
  desktop.advance(80);
  begin("next", CaptureMode::barcode, true);
  EXPECT_FALSE(old->isVisible());
  EXPECT_EQ(controller->selectionWindows().size(), 1U);
  EXPECT_NE(controller->selectionWindows()[0], old);
  EXPECT_EQ(desktop.cursors().pushed.size(), 1U);
  desktop.advance(89);
  EXPECT_THAT(ends, IsEmpty()) << "the watchdog starts anew";
  desktop.windows().keyDown(platform::keyCodeEscape);
  desktop.advance(1000);
  EXPECT_THAT(ends, ElementsAre("next: cancelled"));
}

TEST_F(CaptureSessionTest, SessionBegunDuringACaptureKeepsItsResultApart) {
  begin("first", CaptureMode::barcode, true);
  desktop.windows().dragMouse({100, 200}, {400, 350});
  begin("second");
  desktop.settle();
  EXPECT_THAT(ends, ElementsAre("first: 100,550 300×150"));
  EXPECT_EQ(controller->selectionWindows().size(), 1U);
  drag({0, 0}, {10, 10});
  EXPECT_THAT(ends, ElementsAre("first: 100,550 300×150", "second: 0,890 10×10"));
}

TEST_F(CaptureSessionTest, WithoutScreensEndsAtOnceAndWithoutItsControllerNever) {
  begin();
  desktop.windows().dragMouse({100, 200}, {400, 350});
  controller = nullptr;
  desktop.settle();
  desktop.advance(100);
  EXPECT_THAT(ends, IsEmpty());

  controller = std::make_shared<ScreenCaptureController>();
  desktop.displays().detach(1);
  begin();
  EXPECT_THAT(ends, ElementsAre("session: cancelled"));
  expectNothingShows();
}

}  // namespace
}  // namespace lumiscan
