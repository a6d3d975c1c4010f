#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/Dispatch.h"
#include "platform/Geometry.h"
#include "platform/Window.h"
#include "support/SimulatedDesktop.h"

// The platform layer's own code, which is the same on every desktop.

namespace lumiscan::testing {
namespace {

using platform::integral;
using platform::Point;
using platform::Rect;

TEST(Geometry, NeighboursShareNoPoint) {
  const Rect left{{-1440, 0}, {1440, 900}};
  const Rect right{{0, 0}, {1440, 900}};
  for (const Point point : {Point{0, 0}, Point{0, 450}, Point{-0.5, 899.5}, Point{-1440, 0}})
    EXPECT_NE(contains(left, point), contains(right, point)) << point.x << ',' << point.y;
  EXPECT_FALSE(contains(right, {0, 900}));
}

TEST(Geometry, IntegralGrowsToWholeNumbers) {
  EXPECT_EQ(integral({{0.5, -0.5}, {1, 1}}), (Rect{{0, -1}, {2, 2}}));
  EXPECT_EQ(integral({{200, 1100}, {600, 300}}), (Rect{{200, 1100}, {600, 300}}));
  EXPECT_EQ(integral({{1 - 1e-9, 0}, {2 + 2e-9, 0.5}}, 1e-6), (Rect{{1, 0}, {2, 1}}));
  EXPECT_TRUE(std::isnan(integral({{0, 0}, {std::numeric_limits<double>::quiet_NaN(), 1}}).size.width));
}

TEST(Image, CroppingSharesThePixelsWhateverTheRowLength) {
  for (const int padding : {0, 3}) {
    std::optional<platform::Image> part;
    {
      const auto whole = coordinateImage(100, 50, padding);
      part = whole.cropped({{10, 20}, {30, 10}});
      ASSERT_TRUE(part);
      EXPECT_EQ(part->row(0), whole.row(20) + 40);
      // A crop of a crop counts from the crop's own origin.
      part = part->cropped({{5, 5}, {100, 100}});
    }
    ASSERT_TRUE(part);
    EXPECT_EQ(part->width(), 25);
    EXPECT_EQ(part->height(), 5);
    EXPECT_EQ(pixel(*part, 0, 0), 25U << 12 | 15U);
    EXPECT_EQ(pixel(*part, 24, 4), 29U << 12 | 39U);
  }
}

TEST(Image, CroppingIsCutToTheBounds) {
  const auto whole = coordinateImage(100, 50);
  const auto corner = whole.cropped({{-10, -20}, {15, 25}});
  ASSERT_TRUE(corner);
  EXPECT_EQ(corner->width(), 5);
  EXPECT_EQ(corner->height(), 5);
  EXPECT_EQ(pixel(*corner, 0, 0), 0U);
  EXPECT_FALSE(whole.cropped({{100, 0}, {10, 10}}));
  EXPECT_FALSE(whole.cropped({{10, 50}, {10, 10}}));
  EXPECT_FALSE(whole.cropped({{-10, 0}, {10, 10}}));
  EXPECT_FALSE(whole.cropped({{10, 10}, {0, 10}}));
}

TEST(Image, EnlargingRepeatsEveryPixelOfACrop) {
  const auto large = enlarged(*coordinateImage(10, 10, 1).cropped({{2, 3}, {2, 2}}), 3);
  ASSERT_EQ(large.width(), 6);
  ASSERT_EQ(large.height(), 6);
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 6; ++x)
      EXPECT_EQ(pixel(large, x, y), static_cast<std::uint32_t>((3 + y / 3) << 12 | (2 + x / 3)));
}

/// Drops its window from within every handler, and afterwards looks at its own members.
class DroppingView : public platform::View {
 public:
  DroppingView(std::shared_ptr<platform::Window>& owner, int& handled)
      : View({{0, 0}, {100, 100}}), owner_(owner), handled_(handled) {}
  ~DroppingView() override { marker_ = 0; }

  bool acceptsFirstResponder() const override { return true; }
  void updateTrackingAreas() override {
    addTrackingArea({bounds(), platform::TrackingArea::mouseMoved});
    addTrackingArea({bounds(), platform::TrackingArea::mouseMoved});
  }
  void mouseMoved(const platform::MouseEvent&) override { drop(); }
  void mouseDown(const platform::MouseEvent&) override { drop(); }
  void mouseUp(const platform::MouseEvent&) override { drop(); }
  void cancelOperation() override { drop(); }

 private:
  void drop() {
    window()->orderOut();
    owner_ = nullptr;
    handled_ += marker_;
  }

  std::shared_ptr<platform::Window>& owner_;
  int& handled_;
  int marker_ = 1;
};

class WindowTest : public ::testing::Test {
 protected:
  std::shared_ptr<platform::Window> makeWindow(unsigned style = platform::windowStyleTitled) {
    return std::make_shared<platform::Window>(Rect{{200, 100}, {100, 100}}, style);
  }
  SimulatedDesktop desktop;
};

TEST_F(WindowTest, OutlivesTheHandlersThatDropIt) {
  const std::vector<std::function<void()>> inputs = {
      [this] {
        desktop.windows().mouseMove({250, 150});
      },
      [this] {
        desktop.windows().mouseDown({250, 150});
      },
      [this] { desktop.windows().keyDown(platform::keyCodePeriod, platform::modifierCommand); },
  };
  int handled = 0;
  for (const auto& input : inputs) {
    auto window = makeWindow();
    window->setContentView(std::make_unique<DroppingView>(window, handled));
    window->makeKeyAndOrderFront();
    input();
    EXPECT_EQ(window, nullptr);
  }
  EXPECT_EQ(handled, 3) << "each input reaches the view exactly once";
  EXPECT_EQ(desktop.windows().topmost(), nullptr);
  desktop.windows().mouseUp({250, 150});
}

TEST_F(WindowTest, TakesTheKeyFocusOnlyWhenVisibleAndAble) {
  const auto titled = makeWindow();
  titled->makeKey();
  EXPECT_EQ(desktop.windows().keyWindow(), nullptr);
  titled->makeKeyAndOrderFront();
  EXPECT_TRUE(titled->isKeyWindow());
  const auto borderless = makeWindow(platform::windowStyleBorderless);
  borderless->makeKeyAndOrderFront();
  EXPECT_FALSE(borderless->isKeyWindow());
  titled->orderOut();
  EXPECT_FALSE(titled->isKeyWindow());
}

TEST_F(WindowTest, CancelCommandNeedsTheCommandKey) {
  int cancelled = 0;
  auto window = makeWindow();
  window->setContentView(std::make_unique<DroppingView>(window, cancelled));
  window->makeKeyAndOrderFront();
  desktop.windows().keyDown(platform::keyCodePeriod);
  desktop.windows().keyDown(0, platform::modifierCommand);
  EXPECT_EQ(cancelled, 0);
  desktop.windows().keyDown(platform::keyCodePeriod, platform::modifierCommand | platform::modifierCapsLock);
  EXPECT_EQ(cancelled, 1);
}

TEST_F(WindowTest, InvalidatesInWindowCoordinatesWhileVisible) {
  const auto window = makeWindow();
  window->setContentView(std::make_unique<platform::View>(Rect{{10, 20}, {50, 50}}));
  window->orderFrontRegardless();
  window->contentView()->setNeedsDisplay({{1, 2}, {3, 4}});
  EXPECT_THAT(desktop.windows().takeInvalidated(*window), ::testing::ElementsAre(Rect{{11, 22}, {3, 4}}));
  window->orderOut();
  window->contentView()->setNeedsDisplay();
  window->orderFrontRegardless();
  EXPECT_THAT(desktop.windows().takeInvalidated(*window), ::testing::IsEmpty());
}

}  // namespace
}  // namespace lumiscan::testing
