#include "platform/linux/recognition/CutLines.h"

#include <algorithm>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

/// Drops from a line what reaches into the image from the lines above and below it.
void dropCutGlyphs(TextLine& line, const GreyBitmap& ink) {
  const int room = line.letterHeight / 3;
  // Marks over a line stand lower than its tallest letter, or near the letter that they belong to.
  int highest = ink.height;
  for (const Glyph& glyph : line.glyphs)
    if (glyph.box.top > 0) highest = std::min(highest, glyph.box.top);
  const auto isSlice = [&](const Glyph& glyph) {
    if (2 * glyph.height() >= line.letterHeight) return false;
    const bool isOfLineAbove = glyph.box.top == 0 && glyph.box.bottom + room < highest;
    const bool isOfLineBelow =
        glyph.box.bottom == ink.height - 1 && glyph.box.top > line.baseline + line.letterHeight / 2;
    return isOfLineAbove || isOfLineBelow;
  };
  const auto slices = std::count_if(line.glyphs.begin(), line.glyphs.end(), isSlice);
  if (slices == 0 || static_cast<std::size_t>(slices) == line.glyphs.size()) return;
  std::erase_if(line.glyphs, isSlice);
  line.box = boxAround(line.glyphs);
}

/// Whether all there is of a line is one stroke that runs out of the image at two sides: the corner of a
/// frame.
bool isCorner(const TextLine& line, const GreyBitmap& ink) {
  constexpr int least = 40;  // A smaller letter may be all that was selected.
  const PixelBox& box = line.box;
  const bool isAtSide = box.left == 0 || box.right == ink.width - 1;
  return line.glyphs.size() == 1 && box.height() >= least && isAtSide &&
         (box.top == 0 || box.bottom == ink.height - 1);
}

}  // namespace

void dropCutLines(std::vector<TextLine>& lines, const GreyBitmap& ink) {
  for (TextLine& line : lines) dropCutGlyphs(line, ink);
  const auto isAtEdge = [&](const PixelBox& box) { return box.top == 0 || box.bottom == ink.height - 1; };
  std::vector<int> heights;
  int highest = 0;
  for (const TextLine& line : lines) {
    if (!isAtEdge(line.box)) heights.push_back(line.box.height());
    highest = std::max(highest, line.box.height());
  }
  const int usual = heights.empty() ? highest : levelAt(std::move(heights), 0.5);
  std::erase_if(lines, [&](const TextLine& line) {
    // Underscores end short of the descenders beside them.
    const auto cut = std::count_if(line.glyphs.begin(), line.glyphs.end(), [&](const Glyph& glyph) {
      return isAtEdge(glyph.box) || glyph.width() >= 3 * glyph.height();
    });
    if (isCorner(line, ink)) return true;
    return isAtEdge(line.box) && 2 * line.box.height() < usual &&
           2 * static_cast<std::size_t>(cut) > line.glyphs.size();
  });
}

}  // namespace lumiscan::desktop
