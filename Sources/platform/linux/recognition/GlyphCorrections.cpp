#include "platform/linux/recognition/GlyphCorrections.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <string_view>

#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/Spacing.h"

namespace lumiscan::desktop {

namespace {

bool isUnderscore(const Glyph& glyph, const TextLine& line) {
  const bool flat = glyph.height() <= std::max(2, line.letterHeight / 4);
  const bool wide = 2 * glyph.width() >= line.letterHeight && glyph.width() >= 3 * glyph.height();
  return flat && wide && glyph.box.top >= line.baseline;
}

int middleOf(const PixelBox& box) { return (box.left + box.right) / 2; }

/// The width of one underscore: a place where all characters have one width; else most fonts make it a little
/// narrower than the height of an x.
double underscoreWidth(const std::vector<Symbol>& symbols, const TextLine& line) {
  constexpr std::string_view low = "acemnorsuvwxz";
  if (line.cells) return line.cells->pitch;
  std::vector<int> heights;
  for (const Symbol& symbol : symbols)
    if (symbol.hasOwnInk && symbol.text.size() == 1 && low.find(symbol.text) != std::string_view::npos)
      heights.push_back(symbol.box.bottom - symbol.box.top + 1);
  return heights.empty() ? 1.05 * line.letterHeight : 0.93 * levelAt(std::move(heights), 0.5);
}

Symbol underscores(const Glyph& glyph, double width, bool spaceBefore) {
  const auto count = std::max(1L, std::lround(glyph.width() / width));
  return {std::string(static_cast<std::size_t>(count), '_'), spaceBefore, glyph.box, 100, true, true};
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

/// How many strokes lie one behind the other, also where their smoothed ends meet: there the ink is fainter.
int strokesAlong(const GreyBitmap& ink, const PixelBox& box) {
  constexpr int fainter = 88;  // Per cent of the ink before and behind.
  int strokes = 0;
  int peak = 0;    // Of this stroke so far,
  int valley = 0;  // and the least ink behind it.
  for (int x = box.left; x <= box.right; ++x) {
    int most = 0;
    for (int y = box.top; y <= box.bottom; ++y) most = std::max<int>(most, ink.at(x, y));
    if (strokes == 0 || (100 * valley <= fainter * peak && 100 * valley <= fainter * most)) {
      ++strokes;
      peak = valley = most;
    }
    if (most > peak) peak = valley = most;
    valley = std::min(valley, most);
  }
  return strokes;
}

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
                       const std::vector<Glyph>& letters, const TextLine& line) {
  // An underscore reaches from one end of its place to the other.
  const double space = line.cells ? 0.7 * line.cells->pitch : 0.42 * line.letterHeight;
  const double width = underscoreWidth(symbols, line);
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
    auto next = std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& symbol) {
      return middleOf(symbol.box) > middleOf(underscore.box);
    });
    // The engine may have taken the gap for the end of a sentence.
    if (next != symbols.begin()) {
      const auto before = std::prev(next);
      if ((before->text == "." || before->text == ",") && !before->hasOwnInk) next = symbols.erase(before);
    }
    if (next != symbols.end()) next->spaceBefore = inkAfter - underscore.box.right > space;
    const bool spaceBefore = next != symbols.begin() && underscore.box.left - inkBefore > space;
    symbols.insert(next, underscores(underscore, width, spaceBefore));
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
  // Whoever sets straight ones sets them on both sides.
  if (std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) { return symbol.text == "\""; }))
    for (Symbol& symbol : symbols)
      if (symbol.text == "“" || symbol.text == "”") symbol.text.assign(1, '"');
}

void correctDashes(std::vector<Symbol>& symbols, const GreyBitmap& ink, const TextLine& line) {
  constexpr std::string_view dashes[] = {"-", "–", "—"};
  for (Symbol& symbol : symbols) {
    const bool isDash = std::find(std::begin(dashes), std::end(dashes), symbol.text) != std::end(dashes);
    const bool isFlat = 4 * (symbol.box.bottom - symbol.box.top + 1) <= line.letterHeight + 4;
    if (!isDash || !isFlat || !symbol.hasOwnInk) continue;
    const int strokes = strokesAlong(ink, symbol.box);
    if (strokes > 1) symbol.text = std::string(static_cast<std::size_t>(strokes), '-');
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
