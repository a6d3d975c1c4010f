#include "platform/linux/recognition/LineImage.h"

#include <algorithm>
#include <cmath>

#include "platform/linux/recognition/Resampling.h"

namespace lumiscan::desktop {

namespace {

constexpr double marginBeside = 0.6;  // In heights of a letter.
constexpr std::uint8_t paper = 255;

}  // namespace

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

PixelBox LineImage::toImage(const PixelBox& box) const {
  const auto back = [&](int value, int origin) {
    return static_cast<int>(std::lround(value / scale)) + origin;
  };
  return {back(box.left, left), back(box.top, top), back(box.right, left), back(box.bottom, top)};
}

LineImage drawLine(const GreyBitmap& ink, const TextLine& line, const std::vector<Glyph>& glyphs,
                   const Rendition& rendition) {
  const auto margin = [&](double heights) {
    return static_cast<int>(std::lround(heights * line.letterHeight)) + 1;
  };
  const PixelBox box = boxAround(glyphs);
  const int left = box.left - margin(marginBeside);
  const int top = box.top - margin(rendition.margin);
  GreyBitmap drawn(box.right + margin(marginBeside) - left + 1,
                   box.bottom + margin(rendition.margin) - top + 1, paper);
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
  const double scale = static_cast<double>(rendition.height) / drawn.height;
  const int width = std::max(1, static_cast<int>(std::lround(drawn.width * scale)));
  return {resampled(drawn, width, rendition.height), scale, left, top};
}

}  // namespace lumiscan::desktop
