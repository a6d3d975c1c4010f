#include "platform/linux/recognition/QuotationShapes.h"

#include <algorithm>
#include <cmath>

namespace lumiscan::desktop {

Halves halvesOf(const PixelBox& mark, const GreyBitmap& ink) {
  double sums[2] = {0, 0};
  double weights[2] = {0, 0};
  const int height = mark.bottom - mark.top + 1;
  for (int y = mark.top; y <= mark.bottom; ++y) {
    const int fromTop = 2 * (y - mark.top) + 1;
    if (fromTop == height) continue;  // The row in the middle.
    const int half = fromTop > height ? 1 : 0;
    for (int x = mark.left; x <= mark.right; ++x) {
      sums[half] += x * static_cast<double>(ink.at(x, y));
      weights[half] += static_cast<double>(ink.at(x, y));
    }
  }
  if (weights[0] == 0 || weights[1] == 0) return {};
  return {(sums[1] / weights[1] - sums[0] / weights[0]) / height, weights[1] / weights[0]};
}

bool isSlender(const PixelBox& stroke) {
  return 10 * (stroke.bottom - stroke.top + 1) >= 13 * stroke.width();
}

bool areStraight(const Halves& halves) {
  constexpr double mostLean = 0.1;
  constexpr double mostBelow = 1.2;
  return std::abs(halves.lean) < mostLean && halves.weight <= mostBelow;
}

bool isStraight(const PixelBox& mark, const GreyBitmap& ink) { return areStraight(halvesOf(mark, ink)); }

double difference(const PixelBox& a, const PixelBox& b, bool turned, const GreyBitmap& ink) {
  const int width = std::max(a.right - a.left, b.right - b.left);
  const int height = std::max(a.bottom - a.top, b.bottom - b.top);
  const auto at = [&](const PixelBox& box, int x, int y) {
    const bool inside = x >= 0 && y >= 0 && box.left + x <= box.right && box.top + y <= box.bottom;
    return inside ? static_cast<int>(ink.at(box.left + x, box.top + y)) : 0;
  };
  double differing = 0;
  double all = 0;
  for (int y = 0; y <= height; ++y)
    for (int x = 0; x <= width; ++x) {
      const int one = at(a, x, y);
      const int other = turned ? at(b, b.right - b.left - x, b.bottom - b.top - y) : at(b, x, y);
      differing += std::abs(one - other);
      all += std::max(one, other);
    }
  return all == 0 ? 0 : differing / all;
}

}  // namespace lumiscan::desktop
