#include "platform/linux/recognition/GlyphCorrections.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <string_view>

#include "platform/linux/recognition/LetterHeights.h"
#include "platform/linux/recognition/Strokes.h"

namespace lumiscan::desktop {

namespace {

bool isUnderscore(const Glyph& glyph, const TextLine& line) {
  const bool flat = glyph.height() <= std::max(2, line.letterHeight / 4);
  const bool wide = 2 * glyph.width() >= line.letterHeight && glyph.width() >= 3 * glyph.height();
  return flat && wide && glyph.box.top >= line.baseline;
}

int middleOf(const PixelBox& box) { return (box.left + box.right) / 2; }

/// The width of one underscore: a place where all characters have one width, or that of the shortest stroke
/// where there are longer ones; else most fonts make it a little narrower than the height of an x.
double underscoreWidth(const std::vector<Glyph>& taken, const std::vector<Symbol>& symbols,
                       const TextLine& line, int shortest) {
  if (line.cells) return line.cells->pitch;
  const auto longest = std::max_element(taken.begin(), taken.end(),
                                        [](const Glyph& a, const Glyph& b) { return a.width() < b.width(); });
  const double low = medianHeight(symbols, lowLetters);
  const double high = medianHeight(symbols, tallCharacters);
  const double usual = low > 0 ? 0.93 * low : high > 0 ? 0.72 * high : 1.05 * line.letterHeight;
  // Where even the shortest is longer than an underscore, as in a form, it is several.
  return 10 * longest->width() >= 17 * shortest && shortest < 1.5 * usual ? shortest : usual;
}

/// Whether the ink in a box lies at one height all along, as that of hyphens does; a tilde goes up and down.
bool isLevel(const PixelBox& box, const GreyBitmap& ink) {
  double highest = box.bottom;
  double lowest = box.top;
  for (int x = box.left; x <= box.right; ++x) {
    double sum = 0;
    double weight = 0;
    for (int y = box.top; y <= box.bottom; ++y) {
      sum += y * static_cast<double>(ink.at(x, y));
      weight += static_cast<double>(ink.at(x, y));
    }
    if (weight == 0) continue;  // Between two hyphens.
    highest = std::min(highest, sum / weight);
    lowest = std::max(lowest, sum / weight);
  }
  return lowest - highest <= std::max(0.25, 0.15 * (box.bottom - box.top + 1));
}

bool isDash(const Symbol& symbol) { return symbol.text == "-" || symbol.text == "–" || symbol.text == "—"; }

double heightOfCapitals(const std::vector<Symbol>& symbols, const TextLine& line) {
  constexpr double ofLow = 1.37;
  if (const int tall = medianHeight(symbols, tallCharacters); tall > 0) return tall;
  const int low = medianHeight(symbols, lowLetters);
  return low > 0 ? ofLow * low : line.letterHeight;
}

/// Hyphens and dashes differ in their width alone. In heights of a capital hyphens measure 0.28 to 0.45, en
/// dashes 0.56 to 0.81 and em dashes 0.92 to 1.6.
void correctDashByWidth(std::vector<Symbol>& symbols, std::size_t i, const TextLine& line) {
  constexpr double leastOfEn = 0.55, leastOfDash = 0.5, leastOfEm = 0.84;
  Symbol& symbol = symbols[i];
  // A minus is as wide as an en dash, but stands right before its number.
  const bool isFree = symbol.spaceBefore && (i + 1 == symbols.size() || symbols[i + 1].spaceBefore);
  const bool isHyphen = symbol.text == "-";
  if (isHyphen && !isFree) return;
  const double width = symbol.box.width() / heightOfCapitals(symbols, line);
  const double least = isHyphen ? leastOfEn : leastOfDash;
  symbol.text = std::string(width < least ? "-" : width < leastOfEm ? "–" : "—");
}

Symbol underscores(const Glyph& glyph, double width, bool spaceBefore) {
  const auto count = std::max(1L, std::lround(glyph.width() / width));
  return {std::string(static_cast<std::size_t>(count), '_'), spaceBefore, glyph.box, 100, true, true};
}

}  // namespace

std::vector<Glyph> takeUnderscores(std::vector<Glyph>& glyphs, const TextLine& line) {
  const auto kept = std::stable_partition(glyphs.begin(), glyphs.end(),
                                          [&](const Glyph& glyph) { return !isUnderscore(glyph, line); });
  std::vector<Glyph> taken(kept, glyphs.end());
  glyphs.erase(kept, glyphs.end());
  // With letters above it a stroke underlines them, and so does what goes on behind a letter that reaches
  // through it.
  const auto underlines = [&](const Glyph& stroke) {
    return std::any_of(glyphs.begin(), glyphs.end(), [&](const Glyph& letter) {
      return middleOf(letter.box) > stroke.box.left && middleOf(letter.box) < stroke.box.right;
    });
  };
  const auto end = std::stable_partition(taken.begin(), taken.end(), std::not_fn(underlines));
  const std::vector<Glyph> underlining(end, taken.end());
  taken.erase(end, taken.end());
  std::erase_if(taken, [&](const Glyph& stroke) {
    return std::any_of(underlining.begin(), underlining.end(), [&](const Glyph& other) {
      return stroke.box.top == other.box.top && stroke.box.bottom == other.box.bottom;
    });
  });
  return taken;
}

void insertUnderscores(std::vector<Symbol>& symbols, const std::vector<Glyph>& taken,
                       const std::vector<Glyph>& letters, const TextLine& line, int shortest) {
  if (taken.empty()) return;
  // An underscore reaches from one end of its place to the other.
  const double space = line.cells ? 0.7 * line.cells->pitch : 0.42 * line.letterHeight;
  const double width = underscoreWidth(taken, symbols, line, shortest);
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

void correctDashes(std::vector<Symbol>& symbols, const GreyBitmap& ink, const TextLine& line) {
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    Symbol& symbol = symbols[i];
    const bool isTilde = symbol.text == "~";
    const bool isFlat = 4 * (symbol.box.bottom - symbol.box.top + 1) <= line.letterHeight + 4;
    if (!(isTilde || isDash(symbol)) || !isFlat) continue;
    if (symbol.hasOwnInk && (!isTilde || isLevel(symbol.box, ink))) {
      const std::size_t strokes = strokesAlong(ink, symbol.box).size();
      // Where characters have one width, dashes fill their place and hyphens don't.
      const bool isHyphen = line.cells && !line.cells->areFilledBy(symbol.box.width());
      if (strokes > 1 || isHyphen)
        symbol.text = std::string(strokes, '-');
      else if (!isTilde && !line.cells)
        correctDashByWidth(symbols, i, line);
    }
    // Dashes are wide, and neither stand side by side nor in an arrow.
    if (!isDash(symbol) || symbol.box.width() > line.letterHeight) continue;
    const auto touches = [&](std::size_t other) {
      return isDash(symbols[other]) || symbols[other].text == ">";
    };
    if ((i + 1 < symbols.size() && !symbols[i + 1].spaceBefore && touches(i + 1)) ||
        (i > 0 && !symbol.spaceBefore && isDash(symbols[i - 1])))
      symbol.text = std::string("-");
  }
}

}  // namespace lumiscan::desktop
