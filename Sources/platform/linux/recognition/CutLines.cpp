#include "platform/linux/recognition/CutLines.h"

#include <algorithm>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

void dropCutLines(std::vector<TextLine>& lines, const GreyBitmap& ink) {
  const auto isAtEdge = [&](const PixelBox& box) { return box.top == 0 || box.bottom == ink.height - 1; };
  std::vector<int> heights;
  for (const TextLine& line : lines)
    if (!isAtEdge(line.box)) heights.push_back(line.box.height());
  if (heights.empty()) return;
  const int usual = levelAt(std::move(heights), 0.5);
  std::erase_if(lines, [&](const TextLine& line) {
    const auto cut = std::count_if(line.glyphs.begin(), line.glyphs.end(),
                                   [&](const Glyph& glyph) { return isAtEdge(glyph.box); });
    return 2 * line.box.height() < usual && 2 * static_cast<std::size_t>(cut) > line.glyphs.size();
  });
}

}  // namespace lumiscan::desktop
