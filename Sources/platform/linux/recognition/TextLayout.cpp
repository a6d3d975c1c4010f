#include "platform/linux/recognition/TextLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

#include "platform/linux/recognition/Columns.h"
#include "platform/linux/recognition/ConnectedPieces.h"
#include "platform/linux/recognition/Icons.h"
#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/Lines.h"
#include "platform/linux/recognition/TypeSizes.h"
#include "platform/linux/recognition/Underlines.h"

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

/// The ink from which a pixel counts as part of a glyph; nothing where no pixel is far from its ground.
std::optional<int> inkThreshold(const GreyBitmap& ink) {
  constexpr int faint = 16;
  std::vector<int> values;
  for (const std::uint8_t value : ink.pixels)
    if (value >= faint) values.push_back(value);
  if (values.empty()) return std::nullopt;
  return std::max(faint, levelAt(std::move(values), 0.95) * 1 / 4);
}

Glyphs glyphsIn(const GreyBitmap& ink, int threshold) {
  Glyphs glyphs;
  for (const PixelBox& box : connectedPieces(ink, threshold)) glyphs.push_back({box});
  return glyphs;
}

bool isInside(const PixelBox& inner, const PixelBox& outer) {
  return inner.left > outer.left && inner.right < outer.right && inner.top > outer.top &&
         inner.bottom < outer.bottom;
}

/// The usual height of what may be letters, of which there may be so few that a frame around them would count
/// for as much.
int usualHeightWithin(const Glyphs& glyphs, Characters characters) {
  constexpr std::size_t few = 16;
  if (glyphs.size() > few) return usualHeight(glyphs, characters);
  Glyphs unframed;
  std::copy_if(glyphs.begin(), glyphs.end(), std::back_inserter(unframed), [&](const Glyph& glyph) {
    return std::none_of(glyphs.begin(), glyphs.end(), [&](const Glyph& other) {
      return isInside(other.box, glyph.box) && 5 * other.height() >= glyph.height();
    });
  });
  return usualHeight(unframed, characters);
}

/// Whether a piece is drawn around or beside the text: a rule, a frame, a border at the edge of the image, a
/// caret there. No letter reaches from edge to edge, and none has several others inside.
bool isRuleOrFrame(const Glyph& glyph, const Glyphs& all, int usual, const GreyBitmap& image) {
  const bool atLeft = glyph.box.left == 0;
  const bool atRight = glyph.box.right == image.width - 1;
  const bool atTop = glyph.box.top == 0;
  const bool atBottom = glyph.box.bottom == image.height - 1;
  const bool fromTopToBottom = atTop && atBottom;
  // What lies beside or beneath a window that was cropped with its border.
  const bool isBandAtEdge =
      (atLeft && atRight && atTop != atBottom) || (fromTopToBottom && atLeft != atRight);
  if (isBandAtEdge) return true;
  const bool flat = glyph.height() <= std::max(3, usual / 3);
  const bool slender = glyph.width() <= std::max(3, usual / 3);
  if (flat && (glyph.width() > 12 * usual || (atLeft && atRight))) return true;
  if (slender && (glyph.height() > 3 * usual || fromTopToBottom)) return true;
  const bool isCaret =
      slender && (atLeft || atRight) && 5 * glyph.height() > 6 * usual && glyph.height() >= 6 * glyph.width();
  if (isCaret || glyph.height() > 5 * usual) return true;
  if (2 * glyph.height() < 3 * usual) return false;
  // Letters that touch may have dots and accents inside the box around them.
  const auto inside = std::count_if(all.begin(), all.end(), [&](const Glyph& other) {
    return 2 * other.height() >= usual && isInside(other.box, glyph.box);
  });
  return inside > 1 || (inside == 1 && glyph.width() > 2 * usual && glyph.height() > 2 * usual);
}

/// A text cursor before or behind all text: the one tall stroke there is. A vertical bar in text has others
/// beside it, in tables and pipes, or stands between words.
std::optional<std::size_t> caretIn(const Glyphs& glyphs, int usual, Characters characters) {
  const auto isTallStroke = [&](const Glyph& glyph) {
    // A cursor is hardly higher than wide characters, but thinner than their brackets.
    if (characters == Characters::wide)
      return glyph.height() >= 8 * glyph.width() && 10 * glyph.height() >= 12 * usual;
    return glyph.width() <= std::max(3, usual / 3) && 10 * glyph.height() >= 19 * usual;
  };
  if (std::count_if(glyphs.begin(), glyphs.end(), isTallStroke) != 1) return std::nullopt;
  const auto stroke = std::find_if(glyphs.begin(), glyphs.end(), isTallStroke);
  const auto behind = [&](const Glyph& other) {
    return &other == &*stroke || other.box.left > stroke->box.right;
  };
  const auto before = [&](const Glyph& other) {
    return &other == &*stroke || other.box.right < stroke->box.left;
  };
  if (!std::all_of(glyphs.begin(), glyphs.end(), behind) &&
      !std::all_of(glyphs.begin(), glyphs.end(), before))
    return std::nullopt;
  return static_cast<std::size_t>(stroke - glyphs.begin());
}

/// A text cursor that the selection's edge almost cuts off: a thin stroke there, higher than anything beside
/// it, or than letters are and the only one of its kind. Vertical bars in text seldom come alone.
bool isCaretAtEdge(const Glyph& stroke, const Glyphs& all, int usual, int imageWidth) {
  const int nearEdge = std::max(2, usual / 4);
  const bool atEdge = stroke.box.left <= nearEdge || imageWidth - 1 - stroke.box.right <= nearEdge;
  const auto isStroke = [&](const Glyph& glyph) {
    return glyph.height() >= 6 * glyph.width() && 5 * glyph.height() >= 6 * usual;
  };
  if (!atEdge || !isStroke(stroke)) return false;
  const bool isHighest = std::all_of(all.begin(), all.end(), [&](const Glyph& other) {
    const bool beside = other.box.top <= stroke.box.bottom && other.box.bottom >= stroke.box.top;
    return &other == &stroke || !beside || 20 * stroke.height() >= 27 * other.height();
  });
  const bool isOnlyOne =
      2 * stroke.height() >= 3 * usual && std::none_of(all.begin(), all.end(), [&](const Glyph& other) {
        return &other != &stroke && isStroke(other) && 10 * other.height() >= 9 * stroke.height();
      });
  return isHighest || isOnlyOne;
}

/// The glyphs between one blank row of pixels and the next.
std::vector<Glyphs> stripsOf(Glyphs glyphs) {
  std::sort(glyphs.begin(), glyphs.end(),
            [](const Glyph& a, const Glyph& b) { return a.box.top < b.box.top; });
  std::vector<Glyphs> strips;
  int reached = -1;
  for (const Glyph& glyph : glyphs) {
    if (strips.empty() || glyph.box.top > reached + 1) strips.emplace_back();
    strips.back().push_back(glyph);
    reached = std::max(reached, glyph.box.bottom);
  }
  return strips;
}

/// The lines of the glyphs from top to bottom.
std::vector<TextLine> linesDownwards(const Glyphs& glyphs, Characters characters, const GreyBitmap& ink) {
  if (characters == Characters::wide) return linesOf(glyphs, characters);
  std::vector<std::vector<TextLine>> ofSizes;
  Glyphs others;
  for (const Glyphs& strip : stripsOf(glyphs)) {
    std::vector<TextLine> lines = linesOfSizes(strip, ink);
    if (lines.empty())
      others.insert(others.end(), strip.begin(), strip.end());
    else
      ofSizes.push_back(std::move(lines));
  }
  if (ofSizes.empty()) return linesOf(glyphs, characters);
  std::vector<TextLine> all = linesOf(others, characters);
  for (std::vector<TextLine>& lines : ofSizes) {
    const auto below = std::find_if(all.begin(), all.end(), [&](const TextLine& line) {
      return line.box.top > lines.front().box.bottom;
    });
    const auto place = all.insert(below, std::move_iterator(lines.begin()), std::move_iterator(lines.end()));
    // What stands before several lines is read before all of them.
    auto first = place;
    const auto isBeside = [&](const TextLine& line, int top) {
      return line.box.left > place->box.right && 2 * (top - line.box.bottom) < 3 * line.letterHeight;
    };
    if (!place->whole)
      while (first != all.begin() && isBeside(*std::prev(first), first->box.top)) --first;
    std::rotate(first, place, std::next(place));
  }
  return all;
}

/// The lines of the glyphs, parted into columns where there are some.
std::vector<TextLine> linesInReadingOrder(const Glyphs& glyphs, Characters characters,
                                          const GreyBitmap& ink) {
  if (glyphs.empty()) return {};
  const int usual = std::max(1, usualHeight(glyphs, characters));
  for (const Gutter& gutter : gutters(glyphs, 2 * usual)) {
    Glyphs left, right;
    for (const Glyph& glyph : glyphs) (glyph.box.left < gutter.end ? left : right).push_back(glyph);
    if (!areColumns(linesOf(left, characters), linesOf(right, characters), gutter, usual)) continue;
    std::vector<TextLine> lines = linesInReadingOrder(left, characters, ink);
    std::vector<TextLine> more = linesInReadingOrder(right, characters, ink);
    std::move(more.begin(), more.end(), std::back_inserter(lines));
    return lines;
  }
  return linesDownwards(glyphs, characters, ink);
}

/// Whether all there is lies in one corner of the image, as that of a window beside the selection does.
bool isCorner(const Glyphs& glyphs, const GreyBitmap& image) {
  if (glyphs.size() != 1) return false;
  const PixelBox& box = glyphs.front().box;
  return (box.left == 0) != (box.right == image.width - 1) &&
         (box.top == 0) != (box.bottom == image.height - 1);
}

}  // namespace

PixelBox boxAround(const std::vector<Glyph>& glyphs) {
  PixelBox box = glyphs.front().box;
  for (const Glyph& glyph : glyphs)
    box = {std::min(box.left, glyph.box.left), std::min(box.top, glyph.box.top),
           std::max(box.right, glyph.box.right), std::max(box.bottom, glyph.box.bottom)};
  return box;
}

std::vector<TextLine> findTextLines(GreyBitmap& ink, Characters characters, bool isLatin) {
  const std::optional<int> threshold = inkThreshold(ink);
  if (!threshold) return {};
  Glyphs glyphs = glyphsIn(ink, *threshold);
  const int usual = usualHeightWithin(glyphs, characters);
  if (usual == 0) return {};
  if (eraseUnderlines(ink, glyphs, usual, *threshold)) glyphs = glyphsIn(ink, *threshold);
  Glyphs kept;
  std::copy_if(glyphs.begin(), glyphs.end(), std::back_inserter(kept), [&](const Glyph& glyph) {
    return !isRuleOrFrame(glyph, glyphs, usual, ink) && !isCaretAtEdge(glyph, glyphs, usual, ink.width);
  });
  if (const auto caret = caretIn(kept, usual, characters))
    kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(*caret));
  if (isCorner(kept, ink)) return {};
  // Other letters have shapes that the classifier doesn't know, as icons have.
  if (characters == Characters::wide || !isLatin) return linesInReadingOrder(kept, characters, ink);
  const std::vector<MaybeIcon> icons = takeIcons(kept, ink, usual);
  std::vector<TextLine> lines = linesInReadingOrder(kept, characters, ink);
  for (TextLine& line : lines)
    std::copy_if(icons.begin(), icons.end(), std::back_inserter(line.maybeIcons), [&](const MaybeIcon& icon) {
      return std::any_of(line.glyphs.begin(), line.glyphs.end(),
                         [&](const Glyph& glyph) { return icon.box.contains(glyph.box); });
    });
  return lines;
}

}  // namespace lumiscan::desktop
