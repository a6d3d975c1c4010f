#include "platform/linux/recognition/GlyphCorrections.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string_view>

namespace lumiscan::desktop {

namespace {

/// The width of one underscore in letter heights, in most fonts.
constexpr double underscoreWidth = 1.05;

bool isUnderscore(const Glyph& glyph, const TextLine& line) {
  const bool flat = glyph.height() <= std::max(2, line.letterHeight / 4);
  const bool wide = 2 * glyph.width() >= line.letterHeight && glyph.width() >= 3 * glyph.height();
  return flat && wide && glyph.box.top >= line.baseline;
}

int middleOf(const PixelBox& box) { return (box.left + box.right) / 2; }

Symbol underscores(const Glyph& glyph, int letterHeight, bool spaceBefore) {
  const auto count = std::max(1L, std::lround(glyph.width() / (underscoreWidth * letterHeight)));
  return {std::string(static_cast<std::size_t>(count), '_'), spaceBefore, glyph.box};
}

}  // namespace

std::vector<Glyph> takeUnderscores(std::vector<Glyph>& glyphs, const TextLine& line) {
  std::vector<Glyph> taken;
  const auto kept = std::stable_partition(glyphs.begin(), glyphs.end(),
                                          [&](const Glyph& glyph) { return !isUnderscore(glyph, line); });
  std::move(kept, glyphs.end(), std::back_inserter(taken));
  glyphs.erase(kept, glyphs.end());
  return taken;
}

void insertUnderscores(std::vector<Symbol>& symbols, const std::vector<Glyph>& taken,
                       const std::vector<Glyph>& letters, int letterHeight) {
  const double space = 0.7 * letterHeight;
  for (const Glyph& underscore : taken) {
    // Where the ink beside the underscore ends and begins, which the engine's boxes tell only roughly.
    int inkBefore = -1'000'000;
    int inkAfter = 1'000'000;
    for (const Glyph& letter : letters) {
      if (middleOf(letter.box) < underscore.box.left) inkBefore = std::max(inkBefore, letter.box.right);
      if (middleOf(letter.box) > underscore.box.right) inkAfter = std::min(inkAfter, letter.box.left);
    }
    for (const Symbol& symbol : symbols)
      if (symbol.text.starts_with('_') && middleOf(symbol.box) < underscore.box.left)
        inkBefore = std::max(inkBefore, symbol.box.right);
    const auto next = std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& symbol) {
      return middleOf(symbol.box) > middleOf(underscore.box);
    });
    if (next != symbols.end()) next->spaceBefore = inkAfter - underscore.box.right > space;
    const bool spaceBefore = next != symbols.begin() && underscore.box.left - inkBefore > space;
    symbols.insert(next, underscores(underscore, letterHeight, spaceBefore));
  }
}

void correctQuotes(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const GreyBitmap& ink) {
  (void)symbols;
  (void)glyphs;
  (void)ink;
}

}  // namespace lumiscan::desktop
