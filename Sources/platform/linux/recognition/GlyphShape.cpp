#include "platform/linux/recognition/GlyphShape.h"

#include <algorithm>
#include <cmath>

#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/Resampling.h"

namespace lumiscan::desktop {

namespace {

/// The cluster's ink alone, with the smoothed edges that lie around the boxes of its glyphs.
GreyBitmap cutOut(const GreyBitmap& ink, const Cluster& cluster, const PixelBox& box) {
  // Its own: the words of a line may differ in colour.
  const int full = fullInk(ink, cluster.glyphs);
  GreyBitmap cut(box.right - box.left + 1, box.bottom - box.top + 1, 0);
  for (const Glyph& glyph : cluster.glyphs)
    for (int y = std::max(0, glyph.box.top - 1); y <= std::min(ink.height - 1, glyph.box.bottom + 1); ++y)
      for (int x = std::max(0, glyph.box.left - 1); x <= std::min(ink.width - 1, glyph.box.right + 1); ++x)
        cut.at(x - box.left, y - box.top) =
            static_cast<std::uint8_t>(std::min(255, ink.at(x, y) * 255 / full));
  return cut;
}

std::uint8_t inLetterHeights(int pixels, int letterHeight) {
  return static_cast<std::uint8_t>(std::min(255, pixels * 85 / letterHeight));
}

}  // namespace

GlyphShape shapeOf(const GreyBitmap& ink, const Cluster& cluster, const TextLine& line) {
  const PixelBox box{cluster.box.left - 1, cluster.box.top - 1, cluster.box.right + 1,
                     cluster.box.bottom + 1};
  const GreyBitmap cut = cutOut(ink, cluster, box);
  const int letterHeight = std::max(1, line.letterHeight);
  const double scale = static_cast<double>(GlyphShape::letterHeight) / letterHeight;
  const auto scaled = [&](int pixels, int most) {
    return std::clamp(static_cast<int>(std::lround(pixels * scale)), 1, most);
  };
  const GreyBitmap fitted =
      resampled(cut, scaled(cut.width, GlyphShape::width), scaled(cut.height, GlyphShape::height));
  const int left = (GlyphShape::width - fitted.width) / 2;
  const int top =
      std::clamp(GlyphShape::baseline + static_cast<int>(std::lround((box.top - line.baseline) * scale)), 0,
                 GlyphShape::height - fitted.height);
  GlyphShape shape;
  for (int y = 0; y < fitted.height; ++y) {
    const auto row = shape.inputs.begin() + std::ptrdiff_t{top + y} * GlyphShape::width + left;
    for (int x = 0; x < fitted.width; ++x) row[x] = fitted.at(x, y);
  }
  shape.inputs[GlyphShape::inputCount - 2] =
      inLetterHeights(cluster.box.right - cluster.box.left + 1, letterHeight);
  shape.inputs[GlyphShape::inputCount - 1] =
      inLetterHeights(cluster.box.bottom - cluster.box.top + 1, letterHeight);
  return shape;
}

}  // namespace lumiscan::desktop
