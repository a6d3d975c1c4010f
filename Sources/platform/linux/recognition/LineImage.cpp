#include "platform/linux/recognition/LineImage.h"

#include <algorithm>
#include <cmath>

namespace lumiscan::desktop {

namespace {

constexpr int modelHeight = 36;      // Pixels; larger lines are reduced to it by the engine.
constexpr double marginAbove = 0.4;  // All margins in heights of a letter.
constexpr double marginBelow = 0.4;
constexpr double marginBeside = 0.6;
constexpr std::uint8_t paper = 255;

/// Catmull-Rom's cubic: smooth, and sharper than a linear transition.
double cubic(double x) {
  x = std::abs(x);
  if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
  if (x < 2) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
  return 0;
}

/// The share that each old pixel has in each of `size` new ones along one axis.
struct Weights {
  struct Tap {
    int first;
    std::vector<float> shares;
  };
  std::vector<Tap> taps;

  Weights(int oldSize, int size) {
    const double step = static_cast<double>(oldSize) / size;
    const double stretch = std::max(1.0, step);
    for (int i = 0; i < size; ++i) {
      const double centre = (i + 0.5) * step - 0.5;
      const int first = static_cast<int>(std::floor(centre - 2 * stretch)) + 1;
      const int last = static_cast<int>(std::ceil(centre + 2 * stretch)) - 1;
      Tap tap{first, {}};
      double sum = 0;
      for (int k = first; k <= last; ++k) {
        tap.shares.push_back(static_cast<float>(cubic((k - centre) / stretch)));
        sum += static_cast<double>(tap.shares.back());
      }
      for (float& share : tap.shares) share /= static_cast<float>(sum);
      taps.push_back(std::move(tap));
    }
  }
};

GreyBitmap resampled(const GreyBitmap& bitmap, int width, int height) {
  const Weights across(bitmap.width, width);
  std::vector<float> wide(static_cast<std::size_t>(width) * static_cast<std::size_t>(bitmap.height));
  auto value = wide.begin();
  for (int y = 0; y < bitmap.height; ++y)
    for (const Weights::Tap& tap : across.taps) {
      float sum = 0;
      int x = tap.first;
      for (const float share : tap.shares)
        sum += share * static_cast<float>(bitmap.at(std::clamp(x++, 0, bitmap.width - 1), y));
      *value++ = sum;
    }
  const Weights down(bitmap.height, height);
  GreyBitmap result(width, height, 0);
  std::vector<float> sums(static_cast<std::size_t>(width));
  for (int y = 0; y < height; ++y) {
    const Weights::Tap& tap = down.taps[static_cast<std::size_t>(y)];
    std::fill(sums.begin(), sums.end(), 0.0F);
    int row = tap.first;
    for (const float share : tap.shares) {
      const auto offset = std::clamp(row++, 0, bitmap.height - 1) * static_cast<std::ptrdiff_t>(width);
      std::transform(sums.begin(), sums.end(), wide.begin() + offset, sums.begin(),
                     [share](float sum, float pixel) { return sum + share * pixel; });
    }
    for (int x = 0; x < width; ++x)
      result.at(x, y) =
          static_cast<std::uint8_t>(std::lround(std::clamp(sums[static_cast<std::size_t>(x)], 0.0F, 255.0F)));
  }
  return result;
}

/// The ink that most of the glyphs' strokes reach, so that faint lines become as black as others.
int fullInk(const GreyBitmap& ink, const std::vector<Glyph>& glyphs) {
  constexpr std::uint8_t faint = 12;
  std::vector<std::uint8_t> values;
  for (const Glyph& glyph : glyphs)
    for (int y = glyph.box.top; y <= glyph.box.bottom; ++y)
      for (int x = glyph.box.left; x <= glyph.box.right; ++x)
        if (ink.at(x, y) > faint) values.push_back(ink.at(x, y));
  if (values.empty()) return 255;
  const auto nth = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) * 95 / 100);
  std::nth_element(values.begin(), nth, values.end());
  return std::max<int>(24, *nth);
}

}  // namespace

PixelBox LineImage::toImage(const PixelBox& box) const {
  const auto back = [&](int value, int origin) {
    return static_cast<int>(std::lround(value / scale)) + origin;
  };
  return {back(box.left, left), back(box.top, top), back(box.right, left), back(box.bottom, top)};
}

LineImage drawLine(const GreyBitmap& ink, const TextLine& line, const std::vector<Glyph>& glyphs) {
  const auto margin = [&](double heights) {
    return static_cast<int>(std::lround(heights * line.letterHeight)) + 1;
  };
  const PixelBox box = boxAround(glyphs);
  const int left = box.left - margin(marginBeside);
  const int top = box.top - margin(marginAbove);
  GreyBitmap drawn(box.right + margin(marginBeside) - left + 1, box.bottom + margin(marginBelow) - top + 1,
                   paper);
  const int full = fullInk(ink, glyphs);
  for (const Glyph& glyph : glyphs) {
    // The smoothed edges lie outside the box of the inner ink.
    constexpr int edge = 1;
    for (int y = std::max(0, glyph.box.top - edge); y <= std::min(ink.height - 1, glyph.box.bottom + edge);
         ++y)
      for (int x = std::max(0, glyph.box.left - edge); x <= std::min(ink.width - 1, glyph.box.right + edge);
           ++x)
        drawn.at(x - left, y - top) =
            static_cast<std::uint8_t>(255 - std::min(255, ink.at(x, y) * 255 / full));
  }
  const double scale = static_cast<double>(modelHeight) / drawn.height;
  const int width = std::max(1, static_cast<int>(std::lround(drawn.width * scale)));
  return {resampled(drawn, width, modelHeight), scale, left, top};
}

}  // namespace lumiscan::desktop
