#include "platform/linux/recognition/LoneMarks.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/QuotationMarks.h"
#include "platform/linux/recognition/Strokes.h"

namespace lumiscan::desktop {

namespace {

constexpr double sure = 99;

/// Whether two marks in one line are further apart than neighbours.
bool isSpaceBetween(const PixelBox& left, const PixelBox& right, const TextLine& line) {
  if (!line.cells) return right.left - left.right > line.letterHeight;
  return right.left + right.right - left.left - left.right > 3 * line.cells->pitch;
}

Symbol mark(const std::string& text, const PixelBox& box, const std::vector<Symbol>& before,
            const TextLine& line) {
  const bool spaceBefore = !before.empty() && isSpaceBetween(before.back().box, box, line);
  return {text, spaceBefore, box, sure, true, true};
}

/// A point high over another one or over a comma, which is hardly longer; beneath its dot an i has a whole
/// stem, and the hook of a question mark is far wider than its point.
std::vector<Symbol> readColons(const std::vector<Glyph>& glyphs, const TextLine& line) {
  std::vector<Symbol> symbols;
  for (Cluster& cluster : clustersOf(glyphs)) {
    if (cluster.glyphs.size() != 2) return {};
    std::sort(cluster.glyphs.begin(), cluster.glyphs.end(),
              [](const Glyph& a, const Glyph& b) { return a.box.top < b.box.top; });
    const Glyph& upper = cluster.glyphs.front();
    const Glyph& lower = cluster.glyphs.back();
    const bool isPoint =
        2 * upper.height() <= 3 * upper.width() + 2 && 2 * upper.width() <= 3 * upper.height() + 2;
    const int gap = lower.box.top - upper.box.bottom - 1;
    // The more room there is between them, the longer the comma may be.
    const int longest = gap >= upper.height() ? 3 : 2;
    if (!isPoint || gap < 1 || 2 * lower.height() > (2 * longest + 1) * upper.height() ||
        lower.width() > upper.width() + 2 || upper.width() > 2 * lower.width() + 1)
      return {};
    const bool isComma = 4 * lower.height() > 5 * upper.height();
    symbols.push_back(mark(isComma ? ";" : ":", cluster.box, symbols, line));
  }
  return symbols;
}

/// Flat strokes that don't fill their places, as underscores and dashes do; where characters have widths of
/// their own there is no telling.
std::vector<Symbol> readHyphens(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                const TextLine& line) {
  if (!line.cells) return {};
  std::vector<Symbol> symbols;
  for (const Glyph& glyph : glyphs) {
    if (glyph.width() < 2 * glyph.height() ||
        (!symbols.empty() && glyph.box.left <= symbols.back().box.right))
      return {};
    for (const PixelBox& stroke : strokesAlong(ink, glyph.box)) {
      if (line.cells->areFilledBy(stroke.width())) return {};
      symbols.push_back(mark("-", stroke, symbols, line));
    }
  }
  return symbols;
}

/// Signs of source code, as those that open and close a comment or a block: the engine, which knows words,
/// takes a few of them for letters. Without the places of code they may be icons.
std::vector<Symbol> readSigns(const std::vector<Glyph>& glyphs, const GreyBitmap& ink, const TextLine& line) {
  if (!line.cells) return {};
  LineShapes shapes(ink, line, glyphs);
  std::vector<Symbol> symbols;
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const Classification& shape = shapes.classification(i);
    const PixelBox box = shapes.box(i);
    const bool isTwo = line.cells->placeOf(box.right) - line.cells->placeOf(box.left) > 1;
    const bool isSign = std::u32string_view(U"/*{}()[];").find(shape.best()) != std::u32string_view::npos;
    if (!isSign || isTwo || !isSurelySign(shape)) return {};
    symbols.push_back(mark(utf8Of(shape.best()), box, symbols, line));
  }
  return symbols;
}

}  // namespace

std::vector<Symbol> readLoneMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
  std::vector<Symbol> symbols = readQuotationMarks(glyphs, ink, line);
  if (symbols.empty()) symbols = readColons(glyphs, line);
  if (symbols.empty()) symbols = readHyphens(glyphs, ink, line);
  if (symbols.empty()) symbols = readSigns(glyphs, ink, line);
  return symbols;
}

}  // namespace lumiscan::desktop
