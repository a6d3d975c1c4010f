#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Dispatch.h"
#include "platform/Window.h"
#include "support/SimulatedDesktop.h"

// What other tests rely on beyond the contract that every desktop keeps.

namespace lumiscan::testing {
namespace {

using platform::Point;
using platform::Rect;

TEST(SimulatedDispatcher, RunsWhatFallsDueAtItsOwnTime) {
  SimulatedDesktop desktop;
  std::vector<double> times;
  const auto note = [&] { times.push_back(desktop.dispatcher().now()); };
  desktop.dispatcher().asyncAfter(2, note);
  desktop.dispatcher().asyncAfter(1, [&] {
    note();
    desktop.dispatcher().asyncAfter(0.5, note);
  });
  desktop.dispatcher().asyncAfter(90, note);
  desktop.advance(89.5);
  EXPECT_THAT(times, ::testing::ElementsAre(1, 1.5, 2));
  desktop.advance(0.5);
  EXPECT_THAT(times, ::testing::ElementsAre(1, 1.5, 2, 90));
}

TEST(SimulatedPasteboard, ShowsAClearAndAWriteInOneEventAsOneChange) {
  SimulatedDesktop desktop;
  desktop.pasteboard().takeOver("of another program");
  platform::MainQueue::async([&] {
    desktop.pasteboard().clearContents();
    EXPECT_EQ(desktop.pasteboard().text, "of another program");
    desktop.pasteboard().setString("ours");
  });
  desktop.settle();
  EXPECT_EQ(desktop.pasteboard().text, "ours");
  EXPECT_EQ(desktop.pasteboard().changeCount, 1);
}

TEST(SimulatedDisplays, BoundsGrowDownwardsFromTheMainDisplay) {
  SimulatedDesktop desktop;
  desktop.displays().attach(2, {{-1920, 900}, {1920, 1080}}, 1.5);
  EXPECT_EQ(desktop.displays().bounds(1), (Rect{{0, 0}, {1440, 900}}));
  EXPECT_EQ(desktop.displays().bounds(2), (Rect{{-1920, -1080}, {1920, 1080}}));
  EXPECT_EQ(desktop.displays().bounds(3), Rect{});
  const auto image = desktop.displays().createImage(2);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 2880);
  EXPECT_EQ(image->height(), 1620);
}

/// Records where the mouse was pressed, dragged and released.
class RecordingView : public platform::View {
 public:
  using View::View;
  void mouseDown(const platform::MouseEvent& event) override { points.push_back(event.locationInWindow); }
  void mouseDragged(const platform::MouseEvent& event) override { points.push_back(event.locationInWindow); }
  void mouseUp(const platform::MouseEvent& event) override { points.push_back(event.locationInWindow); }
  std::vector<Point> points;
};

TEST(SimulatedWindows, DragsStayWithTheTopmostWindowWhereTheyStarted) {
  SimulatedDesktop desktop;
  std::vector<std::shared_ptr<platform::Window>> windows;
  std::vector<RecordingView*> views;
  for (const int level : {platform::windowLevelScreenSaver, platform::windowLevelNormal}) {
    const Rect frame{{level == 0 ? 0.0 : 100.0, 100}, {100, 100}};
    windows.push_back(std::make_shared<platform::Window>(frame, platform::windowStyleTitled));
    windows.back()->attributes().level = level;
    auto view = std::make_unique<RecordingView>(Rect{{0, 0}, frame.size});
    views.push_back(view.get());
    windows.back()->setContentView(std::move(view));
    windows.back()->orderFrontRegardless();
  }
  EXPECT_THAT(desktop.windows().visible(), ::testing::ElementsAre(windows[0].get(), windows[1].get()));
  desktop.windows().mouseDown({150, 150});
  desktop.windows().mouseDrag({50, 150});
  desktop.windows().mouseUp({50, 250});
  EXPECT_THAT(views[0]->points, ::testing::ElementsAre(Point{50, 50}, Point{-50, 50}, Point{-50, 150}));
  EXPECT_THAT(views[1]->points, ::testing::IsEmpty());
  EXPECT_TRUE(windows[0]->isKeyWindow());
}

}  // namespace
}  // namespace lumiscan::testing
