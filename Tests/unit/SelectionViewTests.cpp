#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/SelectionView.h"
#include "capture/SelectionWindow.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using platform::Color;
using platform::Point;
using platform::Rect;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = testing::DrawingOperation::Kind;

class RecordingDelegate : public SelectionWindowDelegate {
 public:
  void selectionWindowDidConfirmSelection(SelectionWindow&, const Rect& globalRect,
                                          const platform::Screen&) override {
    confirmed.push_back(globalRect);
  }
  void selectionWindowDidCancel(SelectionWindow&) override { ++cancels; }
  std::vector<Rect> confirmed;
  int cancels = 0;
};

/// One overlay over a screen whose origin isn't that of the global space.
class SelectionViewTest : public ::testing::Test {
 protected:
  void SetUp() override { window->makeKeyAndOrderFront(); }

  /// A point of the overlay in the global screen space.
  static Point global(Point point) { return {point.x - 1920, point.y - 180}; }
  testing::Drawing render() { return desktop.windows().render(*window); }
  testing::Drawing renderDrag(Point from, Point to) {
    desktop.windows().mouseDown(global(from));
    desktop.windows().mouseDrag(global(to));
    return render();
  }
  static void expectCrosshair(const testing::Drawing& drawing, Point p) {
    ASSERT_EQ(drawing.size(), 3U);
    const std::vector<std::pair<Point, Point>> arms = {{{p.x - 8, p.y}, {p.x - 2.5, p.y}},
                                                       {{p.x + 2.5, p.y}, {p.x + 8, p.y}},
                                                       {{p.x, p.y - 8}, {p.x, p.y - 2.5}},
                                                       {{p.x, p.y + 2.5}, {p.x, p.y + 8}}};
    for (const std::size_t i : {0U, 1U}) {
      EXPECT_EQ(drawing[i].kind, Kind::stroke);
      EXPECT_EQ(drawing[i].color, i == 0 ? Color::black().withAlpha(0.5) : Color::white());
      EXPECT_EQ(drawing[i].path.lineWidth, i == 0 ? 2 : 1);
      EXPECT_EQ(drawing[i].path.lineCap, platform::LineCap::round);
      ASSERT_EQ(drawing[i].path.segments.size(), arms.size());
      for (const auto& segment : drawing[i].path.segments)
        EXPECT_THAT(arms, Contains(std::pair(segment.from, segment.to)));
    }
    EXPECT_EQ(drawing[2].kind, Kind::fill);
    EXPECT_EQ(drawing[2].color, Color::white());
    EXPECT_THAT(drawing[2].path.ovals, ElementsAre(Rect{{p.x - 1, p.y - 1}, {2, 2}}));
  }

  testing::SimulatedDesktop desktop;
  const platform::Screen screen = desktop.displays().attach(2, {{-1920, -180}, {1920, 1080}}, 2);
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  std::shared_ptr<SelectionWindow> window = std::make_shared<SelectionWindow>(screen, delegate);
};

TEST_F(SelectionViewTest, FirstDrawingShowsTheCrosshairAtTheMouse) {
  desktop.windows().mouseLocation = global({500, 400});
  expectCrosshair(render(), {500, 400});
}

TEST_F(SelectionViewTest, CrosshairFollowsTheMouseAndIsDrawnAgainWhereItWas) {
  desktop.windows().mouseMove(global({100, 100}));
  EXPECT_THAT(desktop.windows().takeInvalidated(*window), ElementsAre(Rect{{86, 86}, {28, 28}}));
  desktop.windows().mouseMove(global({300, 200}));
  EXPECT_THAT(desktop.windows().takeInvalidated(*window),
              ElementsAre(Rect{{86, 86}, {28, 28}}, Rect{{286, 186}, {28, 28}}));
  expectCrosshair(render(), {300, 200});
}

TEST_F(SelectionViewTest, DragShowsTheOutlineAndTheSizeInPoints) {
  desktop.windows().takeInvalidated(*window);
  const auto drawing = renderDrag({100, 200}, {400.75, 350.75});
  EXPECT_THAT(desktop.windows().takeInvalidated(*window),
              ElementsAre(window->contentView()->bounds(), window->contentView()->bounds()));
  const Rect rect{{100, 200}, {300.75, 150.75}};
  ASSERT_EQ(drawing.size(), 4U);
  for (const std::size_t i : {0U, 1U}) {
    const double growth = i == 0 ? 2 : 0.75;
    EXPECT_EQ(drawing[i].kind, Kind::stroke);
    EXPECT_EQ(drawing[i].color, i == 0 ? Color::black().withAlpha(0.55) : Color::white());
    EXPECT_EQ(drawing[i].path.lineWidth, i == 0 ? 3 : 1.5);
    ASSERT_EQ(drawing[i].path.roundedRects.size(), 1U);
    EXPECT_EQ(drawing[i].path.roundedRects[0].rect, insetBy(rect, -growth, -growth));
    EXPECT_EQ(drawing[i].path.roundedRects[0].radius, 0);
  }
  const double textWidth = 9 * testing::characterWidth;
  const Point textOrigin{100, 200 - testing::lineHeight - 10};
  EXPECT_EQ(drawing[2].kind, Kind::fill);
  EXPECT_EQ(drawing[2].color, Color::black().withAlpha(0.7));
  ASSERT_EQ(drawing[2].path.roundedRects.size(), 1U);
  EXPECT_EQ(drawing[2].path.roundedRects[0].rect,
            (Rect{{textOrigin.x - 6, textOrigin.y - 3}, {textWidth + 12, testing::lineHeight + 6}}));
  EXPECT_EQ(drawing[2].path.roundedRects[0].radius, 5);
  EXPECT_EQ(drawing[3].text, "300 × 150");
  EXPECT_EQ(drawing[3].origin, textOrigin);
  EXPECT_EQ(drawing[3].color, Color::white());
  EXPECT_EQ(drawing[3].font.size, 11);
  EXPECT_EQ(drawing[3].font.weight, platform::FontWeight::medium);
  EXPECT_EQ(drawing[3].font.design, platform::Font::Design::systemMonospacedDigits);
}

TEST_F(SelectionViewTest, BadgeMovesAboveNearTheBottomOfTheScreen) {
  const double lowestBelow = testing::lineHeight + 14;
  EXPECT_EQ(renderDrag({50, lowestBelow}, {150, 100}).back().origin, (Point{50, 4}));
  EXPECT_EQ(renderDrag({50, lowestBelow - 0.5}, {150, 100}).back().origin, (Point{50, 108}));
}

TEST_F(SelectionViewTest, SliverShowsTheCrosshairInstead) {
  desktop.windows().mouseMove(global({20, 30}));
  expectCrosshair(renderDrag({100, 200}, {101, 250}), {20, 30});
  expectCrosshair(renderDrag({100, 200}, {150, 201}), {20, 30});
  EXPECT_EQ(renderDrag({100, 200}, {101.5, 201.5}).size(), 4U);
}

TEST_F(SelectionViewTest, DragInAnyDirectionConfirmsTheSameGlobalRectangle) {
  for (const auto& [from, to] :
       {std::pair<Point, Point>{{100, 200}, {400, 350}}, {{400, 350}, {100, 200}}, {{100, 350}, {400, 200}}})
    desktop.windows().dragMouse(global(from), global(to));
  const Rect expected{{-1820, 20}, {300, 150}};
  EXPECT_THAT(delegate->confirmed, ElementsAre(expected, expected, expected));
  EXPECT_EQ(delegate->cancels, 0);
}

TEST_F(SelectionViewTest, WithoutADelegateTheWindowHidesItself) {
  delegate = nullptr;
  window->confirmSelection({{0, 0}, {10, 10}});
  EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(desktop.logSink().take(), IsEmpty());
  window->makeKeyAndOrderFront();
  desktop.windows().keyDown(platform::keyCodeEscape);
  EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(desktop.logSink().take(),
              ElementsAre(testing::LogLine{platform::LogLevel::error, "capture",
                                           "cancel with nil delegate — session would leak"}));
}

TEST_F(SelectionViewTest, InAnotherWindowReportsToNobody) {
  const auto other =
      std::make_shared<platform::Window>(Rect{{0, 0}, {100, 100}}, platform::windowStyleTitled);
  other->setContentView(std::make_unique<SelectionView>(Rect{{0, 0}, {100, 100}}));
  other->makeKeyAndOrderFront();
  desktop.windows().mouseUp({50, 50});
  other->sendMouseEvent(platform::Window::MousePhase::up, {{50, 50}});
  desktop.windows().keyDown(platform::keyCodeEscape);
  EXPECT_THAT(desktop.logSink().take(), ElementsAre(testing::LogLine{platform::LogLevel::info, "capture",
                                                                     "view mouseUp window=false rect=nil"}));
  EXPECT_TRUE(other->isVisible());
  EXPECT_EQ(delegate->cancels, 0);
}

TEST_F(SelectionViewTest, FollowsTheMouseWithACrosshairCursorOverTheWholeScreen) {
  const platform::View& view = *window->contentView();
  ASSERT_EQ(view.trackingAreas().size(), 1U);
  EXPECT_EQ(view.trackingAreas()[0].rect, view.bounds());
  EXPECT_EQ(view.trackingAreas()[0].options, 0x83U);
  ASSERT_EQ(view.cursorRects().size(), 1U);
  EXPECT_EQ(view.cursorRects()[0].rect, (Rect{{0, 0}, {1920, 1080}}));
  EXPECT_EQ(view.cursorRects()[0].cursor, platform::CursorShape::crosshair);
}

}  // namespace
}  // namespace lumiscan
