#include "platform/linux/recognition/QuotationStrokes.h"

#include <algorithm>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/QuotationShapes.h"
#include "platform/linux/recognition/Strokes.h"

namespace lumiscan::desktop {

namespace {

/// How far the letters of a line lean, as `Halves::lean`: 0 where they stand upright, about -0.1 in italics.
double slantOf(const std::vector<Glyph>& glyphs, const GreyBitmap& ink, const TextLine& line) {
  std::vector<double> leans;  // Of stems such as l and I.
  for (const Glyph& glyph : glyphs)
    if (10 * glyph.height() >= 9 * line.letterHeight && 2 * glyph.height() >= 5 * glyph.width())
      leans.push_back(halvesOf(glyph.box, ink).lean);
  if (leans.empty()) return 0;
  const auto middle = leans.begin() + static_cast<std::ptrdiff_t>(leans.size() / 2);
  std::nth_element(leans.begin(), middle, leans.end());
  return *middle;
}

}  // namespace

std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
  const double slant = slantOf(glyphs, ink, line);
  std::vector<QuoteMark> marks;
  // Of few pixels, one of two strokes alone may seem to lean.
  const auto measure = [&](QuoteMark& mark) {
    Halves halves = halvesOf(mark.box, ink);
    halves.lean -= slant;
    mark.straight = areStraight(halves);
    mark.lean = halves.lean;
    mark.weight = halves.weight;
  };
  const auto add = [&](const PixelBox& stroke) {
    const bool second = !marks.empty() && marks.back().strokes == 1 &&
                        2 * (stroke.left - marks.back().box.right) <= line.letterHeight;
    if (second) {
      QuoteMark& first = marks.back();
      first.strokes = 2;
      first.box.right = stroke.right;
      first.box.top = std::min(first.box.top, stroke.top);
      first.box.bottom = std::max(first.box.bottom, stroke.bottom);
    } else {
      marks.push_back({stroke, 1, false, true, 0, 0});
    }
    measure(marks.back());
  };
  for (const Glyph& glyph : glyphs) {
    const bool high = glyph.box.bottom < line.baseline - line.letterHeight / 2;
    if (!high || glyph.height() < 2) continue;
    // Dots and accents have their letter below them.
    const bool overLetter = std::any_of(glyphs.begin(), glyphs.end(), [&](const Glyph& other) {
      return other.box.top > glyph.box.bottom && other.box.left <= glyph.box.right &&
             other.box.right >= glyph.box.left && !isBeneathQuotationMark(other, glyph);
    });
    if (overLetter) continue;
    if (isSlender(glyph.box)) {
      if (glyph.height() >= 3 && 2 * glyph.width() <= line.letterHeight) add(glyph.box);
      continue;
    }
    // The strokes of a straight double mark may touch.
    const std::vector<PixelBox> strokes = strokesAlong(ink, glyph.box);
    const bool areTwo =
        strokes.size() == 2 && std::all_of(strokes.begin(), strokes.end(), [&](const PixelBox& stroke) {
          return isSlender(stroke) && isStraight(stroke, ink);
        });
    if (areTwo) {
      std::for_each(strokes.begin(), strokes.end(), add);
    } else if (5 * glyph.height() <= 3 * line.letterHeight && glyph.width() <= line.letterHeight) {
      marks.push_back({glyph.box, 2, true, true, 0, 0});
      measure(marks.back());
    }
  }
  return marks;
}

}  // namespace lumiscan::desktop
