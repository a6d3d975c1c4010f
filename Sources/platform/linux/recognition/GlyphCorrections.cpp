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

bool isQuote(std::string_view text) {
  constexpr std::string_view quotes[] = {"'", "\"", "`", "‘", "’", "“", "”"};
  return std::find(std::begin(quotes), std::end(quotes), text) != std::end(quotes);
}

/// An apostrophe or quotation mark at the height of capitals.
struct QuoteMark {
  PixelBox box;
  int strokes;  // 1 or 2.
  bool straight;
};

/// How far the lower half of the ink lies to the right of the upper one, in heights of the glyph.
double lean(const Glyph& glyph, const GreyBitmap& ink) {
  double sums[2] = {0, 0};
  double weights[2] = {0, 0};
  for (int y = glyph.box.top; y <= glyph.box.bottom; ++y) {
    const int fromTop = 2 * (y - glyph.box.top) + 1;
    if (fromTop == glyph.height()) continue;  // The row in the middle.
    const int half = fromTop > glyph.height() ? 1 : 0;
    for (int x = glyph.box.left; x <= glyph.box.right; ++x) {
      sums[half] += x * static_cast<double>(ink.at(x, y));
      weights[half] += static_cast<double>(ink.at(x, y));
    }
  }
  if (weights[0] == 0 || weights[1] == 0) return 0;
  return (sums[1] / weights[1] - sums[0] / weights[0]) / glyph.height();
}

std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
  constexpr double leastLean = 0.1;  // Of a curly mark.
  std::vector<QuoteMark> marks;
  for (const Glyph& glyph : glyphs) {
    const bool high = glyph.box.bottom < line.baseline - line.letterHeight / 2;
    const bool slender = 2 * glyph.width() <= line.letterHeight && 10 * glyph.height() >= 13 * glyph.width();
    if (!high || !slender || glyph.height() < 3) continue;
    // Dots and accents have their letter below them.
    const bool overLetter = std::any_of(glyphs.begin(), glyphs.end(), [&](const Glyph& other) {
      return other.box.top > glyph.box.bottom && other.box.left <= glyph.box.right &&
             other.box.right >= glyph.box.left;
    });
    if (overLetter) continue;
    const bool straight = std::abs(lean(glyph, ink)) < leastLean;
    const bool second = !marks.empty() && marks.back().strokes == 1 && marks.back().straight == straight &&
                        2 * (glyph.box.left - marks.back().box.right) <= line.letterHeight;
    if (second) {
      marks.back().strokes = 2;
      marks.back().box.right = glyph.box.right;
    } else {
      marks.push_back({glyph.box, 1, straight});
    }
  }
  return marks;
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

void correctQuotes(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                   const TextLine& line) {
  for (const QuoteMark& mark : quoteMarks(glyphs, ink, line)) {
    Symbol* nearest = nullptr;
    const auto distance = [&](const Symbol& symbol) {
      return std::abs(middleOf(symbol.box) - middleOf(mark.box));
    };
    for (Symbol& symbol : symbols)
      if (isQuote(symbol.text) && (!nearest || distance(symbol) < distance(*nearest))) nearest = &symbol;
    if (nearest && distance(*nearest) <= line.letterHeight && mark.straight)
      nearest->text = std::string(1, mark.strokes == 1 ? '\'' : '"');
  }
}

void correctDashes(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const TextLine& line) {
  for (Symbol& symbol : symbols) {
    if (symbol.text != "—" && symbol.text != "–") continue;
    std::vector<int> widths;
    for (const Glyph& glyph : glyphs) {
      const bool flat = glyph.height() * 4 <= line.letterHeight + 4 && glyph.width() >= 2 * glyph.height();
      const int middle = middleOf(glyph.box);
      if (flat && glyph.box.bottom < line.baseline && middle >= symbol.box.left && middle <= symbol.box.right)
        widths.push_back(glyph.width());
    }
    if (widths.size() > 1) symbol.text = std::string(widths.size(), '-');
  }
}

}  // namespace lumiscan::desktop
