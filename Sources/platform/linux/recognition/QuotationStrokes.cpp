#include "platform/linux/recognition/QuotationStrokes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

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

/// A glyph that may be a mark or one of its strokes.
struct Stroke {
  PixelBox box;
  bool isTouching;  // Two that can't be told apart.
};

std::vector<Stroke> strokesOf(const std::vector<Glyph>& glyphs, const GreyBitmap& ink, const TextLine& line) {
  std::vector<Stroke> found;
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
      if (glyph.height() >= 3 && 2 * glyph.width() <= line.letterHeight) found.push_back({glyph.box, false});
      continue;
    }
    // The strokes of a straight double mark may touch.
    const std::vector<PixelBox> strokes = strokesAlong(ink, glyph.box);
    const bool areTwo =
        strokes.size() == 2 && std::all_of(strokes.begin(), strokes.end(), [&](const PixelBox& stroke) {
          return isSlender(stroke) && isStraight(stroke, ink);
        });
    if (areTwo) {
      for (const PixelBox& stroke : strokes) found.push_back({stroke, false});
    } else if (5 * glyph.height() <= 3 * line.letterHeight && glyph.width() <= line.letterHeight) {
      found.push_back({glyph.box, true});
    }
  }
  return found;
}

long placeOf(const PixelBox& stroke, const Cells& cells) {
  return std::lround(cells.placeOf((stroke.left + stroke.right) / 2.0));
}

/// Whether strokes stand closer to what is behind them than to what is before them.
bool opens(const PixelBox& first, const PixelBox& last, const std::vector<Glyph>& glyphs) {
  int before = std::numeric_limits<int>::max();
  int behind = std::numeric_limits<int>::max();
  for (const Glyph& glyph : glyphs) {
    if (glyph.box.left < first.left) before = std::min(before, first.left - glyph.box.right);
    if (glyph.box.right > last.right) behind = std::min(behind, glyph.box.left - last.right);
  }
  return behind < before;
}

PixelBox boxAroundBoth(const PixelBox& left, const PixelBox& right) {
  return {left.left, std::min(left.top, right.top), right.right, std::max(left.bottom, right.bottom)};
}

}  // namespace

std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
  const std::vector<Stroke> strokes = strokesOf(glyphs, ink, line);
  const auto gapBehind = [&](std::size_t i) { return strokes[i + 1].box.left - strokes[i].box.right; };
  const auto isPair = [&](std::size_t i) {
    if (i + 1 >= strokes.size() || strokes[i].isTouching || strokes[i + 1].isTouching) return false;
    return line.cells ? placeOf(strokes[i].box, *line.cells) == placeOf(strokes[i + 1].box, *line.cells)
                      : 2 * gapBehind(i) <= line.letterHeight;
  };
  // Of three strokes the two that stand closest are one mark. In some fonts none are closer: mostly the
  // double mark is the outer one.
  const auto startsPair = [&](std::size_t i) {
    if (!isPair(i) || !isPair(i + 1)) return isPair(i);
    const int difference = gapBehind(i) - gapBehind(i + 1);
    const int clear = std::max(1, line.letterHeight / 10);
    if (std::abs(difference) > clear || isPair(i + 2)) return difference <= 0;
    return opens(strokes[i].box, strokes[i + 2].box, glyphs);
  };
  const double slant = slantOf(glyphs, ink, line);
  std::vector<QuoteMark> marks;
  for (std::size_t i = 0; i < strokes.size(); ++i) {
    QuoteMark mark{strokes[i].box, strokes[i].isTouching ? 2 : 1, strokes[i].isTouching, true, 0, 0};
    if (startsPair(i)) {
      mark.strokes = 2;
      mark.box = boxAroundBoth(mark.box, strokes[++i].box);
    }
    // Of few pixels, one of two strokes alone may seem to lean.
    Halves halves = halvesOf(mark.box, ink);
    halves.lean -= slant;
    mark.straight = areStraight(halves);
    mark.lean = halves.lean;
    mark.weight = halves.weight;
    marks.push_back(mark);
  }
  return marks;
}

namespace {

/// A stroke beside a mark, as high and about as wide, that a letter touches.
struct Twin {
  int gap;
  int bottom;   // Where it ends, or the letter beneath it.
  bool isFree;  // Nothing else stands at its upper half.
};

std::optional<Twin> twinOf(const PixelBox& mark, int edge, int step, const GreyBitmap& ink) {
  const int middle = (mark.top + mark.bottom) / 2;
  int full = 0;
  for (int x = mark.left; x <= mark.right; ++x) full = std::max<int>(full, ink.at(x, middle));
  const auto isInk = [&](int x, int y) { return ink.contains(x, y) && 2 * ink.at(x, y) >= full; };
  int first = edge + step;
  while (!isInk(first, middle) && std::abs(first - edge) <= mark.height()) first += step;
  int last = first;
  while (isInk(last + step, middle)) last += step;
  if (!isInk(first, middle) || std::abs(last - first) > mark.width()) return std::nullopt;
  const auto reaches = [&](int y) {
    for (int x = std::min(first, last); x <= std::max(first, last); ++x)
      if (isInk(x, y)) return true;
    return false;
  };
  if (!reaches(mark.top) || reaches(mark.top - 1)) return std::nullopt;
  Twin twin{std::abs(first - edge) - 1, mark.bottom, true};
  while (reaches(twin.bottom + 1)) ++twin.bottom;
  const int beyond = last + step;
  for (int y = mark.top; y <= middle && ink.contains(beyond, y); ++y)
    twin.isFree = twin.isFree && 2 * ink.at(beyond, y) < std::max(ink.at(first, y), ink.at(last, y));
  return twin;
}

template <typename Condition>
bool hasTwin(const PixelBox& mark, const GreyBitmap& ink, const Condition& isTwin) {
  const std::optional<Twin> left = twinOf(mark, mark.left, -1, ink);
  const std::optional<Twin> right = twinOf(mark, mark.right, 1, ink);
  return (left && isTwin(*left)) || (right && isTwin(*right));
}

}  // namespace

bool hasTwinAtLetter(const QuoteMark& mark, const GreyBitmap& ink) {
  return hasTwin(mark.box, ink,
                 [&](const Twin& twin) { return twin.bottom <= mark.box.bottom + 2 * mark.box.height(); });
}

bool hasClearTwin(const QuoteMark& mark, const GreyBitmap& ink) {
  return hasTwin(mark.box, ink, [&](const Twin& twin) {
    return twin.isFree && twin.gap <= mark.box.width() && twin.bottom <= mark.box.bottom + 1;
  });
}

}  // namespace lumiscan::desktop
