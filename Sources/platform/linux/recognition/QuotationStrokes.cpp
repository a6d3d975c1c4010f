#include "platform/linux/recognition/QuotationStrokes.h"

#include <algorithm>
#include <cstdlib>

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

bool hasTwinAtLetter(const QuoteMark& mark, const GreyBitmap& ink) {
  const PixelBox& box = mark.box;
  const int middle = (box.top + box.bottom) / 2;
  int full = 0;
  for (int x = box.left; x <= box.right; ++x) full = std::max<int>(full, ink.at(x, middle));
  const auto isInk = [&](int x, int y) { return ink.contains(x, y) && 2 * ink.at(x, y) >= full; };
  const auto isTwin = [&](int edge, int step) {
    int first = edge + step;
    while (!isInk(first, middle) && std::abs(first - edge) <= box.height()) first += step;
    int last = first;
    while (isInk(last + step, middle)) last += step;
    const int width = std::abs(last - first) + 1;
    if (!isInk(first, middle) || width > box.width() + 1) return false;
    const auto reaches = [&](int y) {
      for (int x = std::min(first, last); x <= std::max(first, last); ++x)
        if (isInk(x, y)) return true;
      return false;
    };
    if (!reaches(box.top) || reaches(box.top - 1)) return false;
    int bottom = box.bottom;
    while (reaches(bottom + 1)) ++bottom;
    return bottom <= box.bottom + 2 * box.height();
  };
  return isTwin(box.left, -1) || isTwin(box.right, 1);
}

}  // namespace lumiscan::desktop
