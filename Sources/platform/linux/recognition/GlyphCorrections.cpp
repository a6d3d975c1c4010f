#include "platform/linux/recognition/GlyphCorrections.h"

#include <algorithm>
#include <cctype>
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

/// Whether the symbol stands where a Romance language leaves a vowel out, as in l'on or qu'il.
bool isElision(const std::vector<Symbol>& symbols, std::size_t apostrophe) {
  if (apostrophe == 0 || apostrophe + 1 == symbols.size()) return false;
  const auto startsWord = [&](std::size_t i) { return i == 0 || symbols[i].spaceBefore; };
  const auto is = [&](std::size_t i, std::string_view letters) {
    return symbols[i].text.size() == 1 && letters.find(symbols[i].text) != std::string_view::npos;
  };
  const std::size_t before = apostrophe - 1;
  const bool elided = (startsWord(before) && is(before, "cdjlmnstCDJLMNST")) ||
                      (before > 0 && startsWord(before - 1) && is(before - 1, "qQ") && is(before, "uU"));
  return elided && !startsWord(apostrophe) && !startsWord(apostrophe + 1);
}

/// An apostrophe or quotation mark at the height of capitals.
struct QuoteMark {
  PixelBox box;
  int strokes;  // 1 or 2.
  bool straight;
};

/// Straight marks stand upright and taper off downwards, if at all; curly ones lean, or are heavier below.
bool isStraight(const Glyph& glyph, const GreyBitmap& ink) {
  constexpr double mostLean = 0.1;  // Of the height.
  constexpr double mostBelow = 1.2;
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
  if (weights[0] == 0 || weights[1] == 0) return true;
  const double lean = (sums[1] / weights[1] - sums[0] / weights[0]) / glyph.height();
  return std::abs(lean) < mostLean && weights[1] <= mostBelow * weights[0];
}

std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
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
    const bool straight = isStraight(glyph, ink);
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

// A gap as wide as most of a space, in per cent of the line's usual one, is a space whatever was read; one
// that is far narrower is none.
constexpr int spaceFrom = 80;
constexpr int noSpaceBelow = 45;

/// A stretch along the line without ink.
struct Gap {
  int start, end;  // The first free column and the first behind it.
  int width() const { return end - start; }
};

std::vector<Gap> gapsOf(const std::vector<Glyph>& glyphs) {
  std::vector<Gap> gaps;
  if (glyphs.empty()) return gaps;
  int reached = glyphs.front().box.right;  // They come from left to right.
  for (const Glyph& glyph : glyphs) {
    if (glyph.box.left > reached + 1) gaps.push_back({reached + 1, glyph.box.left});
    reached = std::max(reached, glyph.box.right);
  }
  return gaps;
}

/// The symbols that may come right after the gap, as far as the engine's rough boxes tell; the likeliest
/// first.
std::vector<std::size_t> symbolsAfter(const Gap& gap, const std::vector<Symbol>& symbols, int tolerance) {
  std::vector<std::pair<int, std::size_t>> found;
  for (std::size_t i = 1; i < symbols.size(); ++i) {
    const PixelBox& left = symbols[i - 1].box;
    const PixelBox& right = symbols[i].box;
    const int off = std::abs(left.right + right.left - gap.start - gap.end) / 2;
    if (off <= tolerance) found.emplace_back(off, i);
  }
  std::sort(found.begin(), found.end());
  std::vector<std::size_t> indices;
  for (const auto& [off, i] : found) indices.push_back(i);
  return indices;
}

bool isWordCharacter(const Symbol& symbol) {
  const auto c = static_cast<unsigned char>(symbol.text.front());
  return std::isalnum(c) || c == '_' || c >= 0x80;
}

bool isDigit(const Symbol& symbol) { return std::isdigit(static_cast<unsigned char>(symbol.text.front())); }

}  // namespace

std::vector<Glyph> takeUnderscores(std::vector<Glyph>& glyphs, const TextLine& line) {
  std::vector<Glyph> taken;
  const auto kept = std::stable_partition(glyphs.begin(), glyphs.end(),
                                          [&](const Glyph& glyph) { return !isUnderscore(glyph, line); });
  // With letters above it a stroke underlines them.
  std::copy_if(kept, glyphs.end(), std::back_inserter(taken), [&](const Glyph& stroke) {
    return std::none_of(glyphs.begin(), kept, [&](const Glyph& letter) {
      return middleOf(letter.box) > stroke.box.left && middleOf(letter.box) < stroke.box.right;
    });
  });
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
    if (!nearest || distance(*nearest) > line.letterHeight) continue;
    // Models of Romance languages know no apostrophe but the straight one.
    if (!mark.straight && nearest->text == "'" &&
        isElision(symbols, static_cast<std::size_t>(nearest - symbols.data())))
      nearest->text = "’";
    if (mark.straight) nearest->text = std::string(1, mark.strokes == 1 ? '\'' : '"');
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

void correctSpaces(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const TextLine& line) {
  const int tolerance = std::max(2, line.letterHeight / 2);
  const std::vector<Gap> gaps = gapsOf(glyphs);
  const auto spaceAmong = [&](const std::vector<std::size_t>& indices) {
    return std::find_if(indices.begin(), indices.end(),
                        [&](std::size_t i) { return symbols[i].spaceBefore; });
  };
  // The widest gap that each space that was read may be.
  std::vector<int> widths(symbols.size());
  for (const Gap& gap : gaps) {
    const std::vector<std::size_t> after = symbolsAfter(gap, symbols, tolerance);
    if (const auto i = spaceAmong(after); i != after.end()) widths[*i] = std::max(widths[*i], gap.width());
  }
  std::vector<int> spaces;
  std::copy_if(widths.begin(), widths.end(), std::back_inserter(spaces), [](int width) { return width > 0; });
  // With few spaces there is no telling how wide one is.
  constexpr std::size_t fewest = 3;
  if (spaces.size() < fewest) return;
  const auto middle = spaces.begin() + static_cast<std::ptrdiff_t>(spaces.size() / 2);
  std::nth_element(spaces.begin(), middle, spaces.end());
  const int usual = *middle;

  for (std::size_t i = 1; i < symbols.size(); ++i) {
    // Letters may reach under their neighbour, as j does; then the gap is no measure.
    const bool inWord = isWordCharacter(symbols[i - 1]) && isWordCharacter(symbols[i]);
    if (widths[i] > 0 && widths[i] * 100 < usual * noSpaceBelow && !inWord) symbols[i].spaceBefore = false;
  }
  for (const Gap& gap : gaps) {
    if (gap.width() * 100 < usual * spaceFrom) continue;
    const std::vector<std::size_t> after = symbolsAfter(gap, symbols, tolerance);
    if (after.empty() || spaceAmong(after) != after.end()) continue;
    const std::size_t i = after.front();
    // In small text the boxes may be off by a character, and the space there already.
    constexpr int small = 8;
    const bool isNear = line.letterHeight < small && (symbols[i - 1].spaceBefore ||
                                                      (i + 1 < symbols.size() && symbols[i + 1].spaceBefore));
    // Digits have one width, and some much room in it.
    if (!isNear && !isDigit(symbols[i]) && !isDigit(symbols[i - 1])) symbols[i].spaceBefore = true;
  }
}

void correctHexadecimals(std::vector<Symbol>& symbols) {
  const auto isHexadecimal = [](const Symbol& symbol) {
    return symbol.text.size() == 1 && std::isxdigit(static_cast<unsigned char>(symbol.text.front()));
  };
  for (std::size_t i = 0; i + 2 < symbols.size(); ++i) {
    const bool starts = i == 0 || symbols[i].spaceBefore || !isWordCharacter(symbols[i - 1]);
    if (starts && symbols[i].text == "O" && symbols[i + 1].text == "x" && !symbols[i + 1].spaceBefore &&
        isHexadecimal(symbols[i + 2]) && !symbols[i + 2].spaceBefore)
      symbols[i].text = "0";
  }
}

}  // namespace lumiscan::desktop
