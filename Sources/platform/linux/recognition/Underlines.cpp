#include "platform/linux/recognition/Underlines.h"

#include <algorithm>
#include <optional>

namespace lumiscan::desktop {

namespace {

/// Rows of a glyph, both ends included.
struct Rows {
  int top, bottom;
};

/// The stroke across a glyph, if there is one alone and as thin as an underline. Frames have two, and
/// capitals whose serifs touch stand on theirs with all their stems.
std::optional<Rows> underlineOf(const GreyBitmap& ink, const Glyph& glyph, int usual, int threshold) {
  const auto inkedIn = [&](int y) {
    int inked = 0;
    for (int x = glyph.box.left; x <= glyph.box.right; ++x) inked += ink.at(x, y) >= threshold;
    return inked;
  };
  const auto isAcross = [&](int y) { return 20 * inkedIn(y) >= 19 * glyph.width(); };
  int top = glyph.box.top;
  while (top <= glyph.box.bottom && !isAcross(top)) ++top;
  int bottom = top;
  while (bottom < glyph.box.bottom && isAcross(bottom + 1)) ++bottom;
  for (int y = bottom + 1; y <= glyph.box.bottom; ++y)
    if (isAcross(y)) return std::nullopt;
  const bool isBelow = top <= glyph.box.bottom && 5 * (top - glyph.box.top) >= 4 * usual;
  if (!isBelow || bottom - top >= std::max(2, usual / 4) || 5 * inkedIn(top - 1) > glyph.width())
    return std::nullopt;
  const bool hasSides =
      ink.at(glyph.box.left, top - 1) >= threshold && ink.at(glyph.box.right, top - 1) >= threshold;
  return hasSides ? std::nullopt : std::optional(Rows{top, bottom});
}

}  // namespace

bool eraseUnderlines(GreyBitmap& ink, const std::vector<Glyph>& glyphs, int usual, int threshold) {
  const auto isInkAt = [&](int x, int y) { return ink.contains(x, y) && ink.at(x, y) >= threshold; };
  bool erased = false;
  for (const Glyph& glyph : glyphs) {
    // No letter has a stroke so wide, underscores stand alone, and what is far higher is a frame or a
    // picture.
    if (2 * glyph.width() < 5 * usual || glyph.height() <= std::max(2, usual / 4) ||
        glyph.height() > 5 * usual)
      continue;
    const std::optional<Rows> stroke = underlineOf(ink, glyph, usual, threshold);
    if (!stroke) continue;
    for (int x = glyph.box.left; x <= glyph.box.right; ++x) {
      const bool isCrossed = isInkAt(x, stroke->top - 1) && isInkAt(x, stroke->bottom + 1);
      if (!isCrossed) fillBox(ink, {x, stroke->top, x, stroke->bottom}, 0);
    }
    erased = true;
  }
  return erased;
}

}  // namespace lumiscan::desktop
