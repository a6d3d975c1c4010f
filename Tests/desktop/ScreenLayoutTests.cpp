#include "platform/linux/x11/ScreenLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumiscan::desktop::x11 {
namespace {

using platform::Point;
using platform::Rect;
using ::testing::ElementsAre;
using ::testing::FieldsAre;

// The primary monitor has another at its left, larger in pixels and at scale 2, and one above at 1.25; panels
// take 30 pixels of the primary's top.
const ScreenLayout layout({
    {"LEFT", {{0, 400}, {2560, 1440}}, false, 2, {}},
    {"MAIN", {{2560, 768}, {1920, 1080}}, true, 1, Rect{{2560, 798}, {1920, 1050}}},
    {"ABOVE", {{2560, 0}, {1366, 768}}, false, 1.25, {}},
});
const auto left = ScreenLayout::displayID("LEFT");
const auto primary = ScreenLayout::displayID("MAIN");
const auto above = ScreenLayout::displayID("ABOVE");

TEST(ScreenLayout, PutsThePrimaryScreenFirstAndAtTheOrigin) {
  // Left: 1280 by 720 points; its top is 368 pixels above the primary's.
  const Rect leftFrame{{-2560, 728}, {1280, 720}}, aboveFrame{{0, 1080 + 768 - 614.4}, {1092.8, 614.4}};
  EXPECT_THAT(
      layout.screens(),
      ElementsAre(FieldsAre(primary, Rect{{0, 0}, {1920, 1080}}, Rect{{0, 0}, {1920, 1050}}, 1),
                  FieldsAre(left, leftFrame, leftFrame, 2), FieldsAre(above, aboveFrame, aboveFrame, 1.25)));
  EXPECT_EQ(layout.mainDisplayID(), primary);
  EXPECT_EQ(layout.bounds(primary), (Rect{{0, 0}, {1920, 1080}}));
  EXPECT_EQ(layout.bounds(left), (Rect{{-2560, -368}, {1280, 720}}));
}

TEST(ScreenLayout, FindsTheMouseOnEachScreenAndBetweenThem) {
  EXPECT_EQ(layout.mouseLocation({2560, 768}), (Point{0.5, 1079.5}));
  // 50 points into the left screen.
  EXPECT_EQ(layout.mouseLocation({100, 500}), (Point{-2510, 1397.5}));
  for (const auto& screen : layout.screens()) {
    const Rect pixels = *layout.pixels(screen.displayID);
    EXPECT_TRUE(platform::contains(screen.frame, layout.mouseLocation(pixels.origin)));
    EXPECT_TRUE(
        platform::contains(screen.frame, layout.mouseLocation({pixels.maxX() - 1, pixels.maxY() - 1})));
  }
  // On no monitor, just left of the one above: measured from it.
  EXPECT_EQ(layout.mouseLocation({2550, 0}), (Point{-7.6, 1847.6}));
}

TEST(ScreenLayout, OfMonitorsThatOverlapTheFirstCounts) {
  const ScreenLayout overlapping({
      {"RIGHT", {{50, 0}, {100, 100}}, false, 2, {}},
      {"MAIN", {{0, 0}, {100, 100}}, true, 1, {}},
      {"MIRROR", {{50, 0}, {100, 100}}, false, 1, {}},
  });
  ASSERT_EQ(overlapping.screens().size(), 2U);
  EXPECT_EQ(overlapping.screens()[1].displayID, ScreenLayout::displayID("RIGHT"));
  EXPECT_EQ(overlapping.mouseLocation({60, 10}), (Point{60.5, 89.5}));
  EXPECT_EQ(overlapping.place({{60, 80}, {10, 10}})->display, ScreenLayout::displayID("MAIN"));
}

TEST(ScreenLayout, FindsThePixelsOfARectangle) {
  for (const auto& screen : layout.screens()) {
    const auto place = layout.place(screen.frame);
    ASSERT_TRUE(place);
    EXPECT_EQ(*place, (ScreenLayout::Place{screen.displayID, *layout.pixels(screen.displayID),
                                           screen.backingScaleFactor, true}));
  }
  // 100 points from the left and 20 from the top of the screen at scale 2.
  EXPECT_EQ(layout.place({{-2460, 1418}, {30, 10}}),
            (ScreenLayout::Place{left, {{200, 440}, {60, 20}}, 2, false}));
  EXPECT_EQ(layout.place({{5000, 5000}, {10, 10}}), std::nullopt);
}

TEST(ScreenLayout, KnowsNothingOfWhatIsNotAttached) {
  const auto gone = ScreenLayout::displayID("GONE");
  EXPECT_EQ(layout.bounds(gone), Rect{});
  EXPECT_EQ(layout.pixels(gone), std::nullopt);
  const ScreenLayout none({});
  EXPECT_TRUE(none.screens().empty());
  EXPECT_EQ(none.mainDisplayID(), 0U);
  EXPECT_EQ(none.mouseLocation({3, 4}), (Point{3, 4}));
  // Without a primary monitor the first one is it.
  EXPECT_EQ(ScreenLayout({{"A", {{0, 0}, {10, 10}}, false, 1, {}}}).mainDisplayID(),
            ScreenLayout::displayID("A"));
}

TEST(ScreenLayout, NumbersAnOutputByItsNameAlone) {
  // A stored selection names its display by this number: it must never change.
  EXPECT_EQ(ScreenLayout::displayID("HDMI-1"), 494947269U);
  EXPECT_NE(ScreenLayout::displayID("HDMI-1"), ScreenLayout::displayID("HDMI-2"));
}

}  // namespace
}  // namespace lumiscan::desktop::x11
