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
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::line;

constexpr Color black = Color::black(), white = Color::white();

struct QuietDelegate : SelectionWindowDelegate {
  void selectionWindowDidConfirmSelection(SelectionWindow&, const Rect&, const platform::Screen&) override {}
  void selectionWindowDidCancel(SelectionWindow&) override {}
};

/// One overlay over a screen whose origin isn't that of the global space.
struct SelectionViewTest : ::testing::Test {
  void SetUp() override { window->makeKeyAndOrderFront(); }

  /// A point of the overlay in the global screen space.
  static Point global(Point point) { return {point.x - 1920, point.y - 180}; }
  std::vector<std::string> render() { return testing::SimulatedWindows::render(*window).operations; }
  std::vector<std::string> renderDrag(Point from, Point to) {
    desktop.windows().mouseDown(global(from));
    desktop.windows().mouseDrag(global(to));
    return render();
  }
  static std::vector<std::string> crosshairAt(Point p) {
    std::ostringstream arms;
    arms << "round";
    for (const auto& [from, to] : {std::pair(-8.0, -2.5), {2.5, 8.0}})
      arms << ' ' << Point{p.x + from, p.y} << '-' << Point{p.x + to, p.y};
    for (const auto& [from, to] : {std::pair(-8.0, -2.5), {2.5, 8.0}})
      arms << ' ' << Point{p.x, p.y + from} << '-' << Point{p.x, p.y + to};
    return {line("stroke", black.withAlpha(0.5), 2, arms.str()), line("stroke", white, 1, arms.str()),
            line("fill", white, "oval", Rect{{p.x - 1, p.y - 1}, {2, 2}})};
  }

  testing::SimulatedDesktop desktop;
  const platform::Screen screen = desktop.displays().attach(2, {{-1920, -180}, {1920, 1080}}, 2);
  std::shared_ptr<QuietDelegate> delegate = std::make_shared<QuietDelegate>();
  std::shared_ptr<SelectionWindow> window = std::make_shared<SelectionWindow>(screen, delegate);
};

TEST_F(SelectionViewTest, CrosshairFollowsTheMouseAndIsDrawnAgainWhereItWas) {
  desktop.windows().mouseLocation = global({500, 400});
  EXPECT_EQ(render(), crosshairAt({500, 400})) << "where the mouse is at first";
  desktop.windows().mouseMove(global({100, 100}));
  EXPECT_THAT(desktop.windows().takeInvalidated(*window),
              ElementsAre(Rect{{486, 386}, {28, 28}}, Rect{{86, 86}, {28, 28}}));
  desktop.windows().mouseMove(global({300, 200}));
  EXPECT_THAT(desktop.windows().takeInvalidated(*window),
              ElementsAre(Rect{{86, 86}, {28, 28}}, Rect{{286, 186}, {28, 28}}));
  EXPECT_EQ(render(), crosshairAt({300, 200}));
  const auto& cursors = window->contentView()->cursorRects();
  ASSERT_EQ(cursors.size(), 1U);
  EXPECT_EQ(cursors[0].rect, window->contentView()->bounds());
  EXPECT_EQ(cursors[0].cursor, platform::CursorShape::crosshair);
}

TEST_F(SelectionViewTest, DragShowsTheOutlineAndTheSizeInPoints) {
  desktop.windows().takeInvalidated(*window);
  EXPECT_THAT(renderDrag({100, 200}, {400.75, 350.75}),
              ElementsAre(line("stroke", black.withAlpha(0.55), "3 304.75×154.75 at (98, 198) radius 0"),
                          line("stroke", white, "1.5 302.25×152.25 at (99.25, 199.25) radius 0"),
                          line("fill", black.withAlpha(0.7), "75×20 at (94, 173) radius 5"),
                          line("text", white, "digits 11 medium at (100, 176): 300 × 150")));
  EXPECT_THAT(desktop.windows().takeInvalidated(*window),
              ElementsAre(window->contentView()->bounds(), window->contentView()->bounds()));
}

TEST_F(SelectionViewTest, BadgeMovesAboveNearTheBottomOfTheScreen) {
  const double lowestBelow = testing::lineHeight + 14;
  EXPECT_THAT(renderDrag({50, lowestBelow}, {150, 100}).back(), HasSubstr(" at (50, 4): "));
  EXPECT_THAT(renderDrag({50, lowestBelow - 0.5}, {150, 100}).back(), HasSubstr(" at (50, 108): "));
}

TEST_F(SelectionViewTest, SliverShowsTheCrosshairInstead) {
  desktop.windows().mouseMove(global({20, 30}));
  EXPECT_EQ(renderDrag({100, 200}, {101, 250}), crosshairAt({20, 30}));
  EXPECT_EQ(renderDrag({100, 200}, {150, 201}), crosshairAt({20, 30}));
  EXPECT_EQ(renderDrag({100, 200}, {101.5, 201.5}).size(), 4U);
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
              ElementsAre("capture error: cancel with nil delegate — session would leak"));
}

TEST_F(SelectionViewTest, InAnotherWindowReportsToNobody) {
  const auto other =
      std::make_shared<platform::Window>(Rect{{0, 0}, {100, 100}}, platform::windowStyleTitled);
  other->setContentView(std::make_unique<SelectionView>(Rect{{0, 0}, {100, 100}}));
  other->makeKeyAndOrderFront();
  desktop.windows().mouseUp({50, 50});
  other->sendMouseEvent(platform::Window::MousePhase::up, {{50, 50}});
  desktop.windows().keyDown(platform::keyCodeEscape);
  EXPECT_THAT(desktop.logSink().take(), ElementsAre("capture: view mouseUp window=false rect=nil"));
  EXPECT_TRUE(other->isVisible());
}

}  // namespace
}  // namespace lumiscan
