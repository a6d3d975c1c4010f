#include "platform/linux/recognition/ImagePreparation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "platform/linux/drawing/BitmapContext.h"

namespace lumiscan::desktop {
namespace {

using platform::BezierPath;
using platform::Color;
using platform::Rect;

const Color page{0.97, 0.97, 0.97, 1};
const Color blue{0.15, 0.4, 0.9, 1};
const Color grey{0.6, 0.6, 0.6, 1};

/// A page of 160 by 60 points, which are pixels here.
struct Screen {
  std::unique_ptr<CairoBitmapContext> context = CairoBitmapContext::create(160, 60);

  explicit Screen(Color ground = page) { fill({{0, 0}, {160, 60}}, ground); }

  Screen& fill(const Rect& rect, Color color, double radius = 0) {
    context->fill(radius > 0 ? BezierPath::roundedRect(rect, radius) : BezierPath::rect(rect), color);
    return *this;
  }

  Screen& draw(const std::string& text, platform::Point origin, Color color) {
    context->draw(text, origin, {{platform::Font::Design::sansSerif, 14}, color});
    return *this;
  }
};

int mostInk(const GreyBitmap& ink, int firstX, int lastX) {
  int most = 0;
  for (int y = 0; y < ink.height; ++y)
    for (int x = firstX; x <= lastX; ++x) most = std::max<int>(most, ink.at(x, y));
  return most;
}

/// Expects ink between two columns, both included, and none on their sides.
void expectInkOnlyIn(const Screen& screen, int firstX, int lastX, const std::string& what) {
  const GreyBitmap ink = inkOf(screen.context->makeImage());
  EXPECT_LT(mostInk(ink, 0, firstX - 1), 8) << what;
  EXPECT_LT(mostInk(ink, lastX + 1, ink.width - 1), 8) << what;
  EXPECT_GT(mostInk(ink, firstX, lastX), 100) << what;
  // Above and below the text, too.
  int most = 0;
  for (const int y : {15, 45})
    for (int x = firstX; x <= lastX; ++x) most = std::max<int>(most, ink.at(x, y));
  EXPECT_LT(most, 8) << what;
}

TEST(ImagePreparation, ControlsAreNoInk) {
  const Color white = Color::white();
  const Color black = Color::black();
  expectInkOnlyIn(
      Screen({0.1, 0.1, 0.15, 1}).fill({{30, 15}, {100, 30}}, page, 6).draw("code", {45, 24}, black), 44, 90,
      "a box with round corners");
  expectInkOnlyIn(Screen().fill({{40, 15}, {70, 30}}, blue, 15).draw("new", {58, 24}, white), 55, 95,
                  "a pill");
  expectInkOnlyIn(Screen()
                      .fill({{30, 14}, {100, 32}}, grey, 6)
                      .fill({{31, 15}, {98, 30}}, white, 5)
                      .draw("Save", {60, 24}, black),
                  58, 100, "a button with a border");
  expectInkOnlyIn(Screen()
                      .fill({{20, 16}, {120, 28}}, black, 4)
                      .fill({{75, 12}, {10, 4}}, black)
                      .fill({{78, 9}, {4, 3}}, black)
                      .draw("A hint", {30, 25}, white),
                  29, 80, "a tooltip with a pointer");
  expectInkOnlyIn(Screen()
                      .fill({{40, 15}, {70, 30}}, blue)
                      .draw("new", {58, 24}, white)
                      .fill({{40, 30}, {10, 3}}, white)
                      .fill({{47, 15}, {3, 15}}, white),
                  40, 95, "marked words of which a letter cuts off a corner");
}

TEST(ImagePreparation, TheTitleBarOfAWindowSaysNothingOfThePageAroundIt) {
  const GreyBitmap ink = inkOf(Screen(Color::white())
                                   .fill({{5, 3}, {150, 54}}, {0.9, 0.9, 0.9, 1})
                                   .fill({{5, 37}, {150, 20}}, Color::black())
                                   .draw("Title", {50, 40}, Color::white())
                                   .draw("Words", {50, 20}, Color::black())
                                   .context->makeImage());
  EXPECT_LT(mostInk(ink, 0, 48), 8);
  EXPECT_LT(mostInk(ink, 101, 159), 8);
  EXPECT_GT(mostInk(ink, 50, 60), 100);
}

}  // namespace
}  // namespace lumiscan::desktop
