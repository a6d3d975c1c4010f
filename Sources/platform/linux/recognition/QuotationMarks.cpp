#include "platform/linux/recognition/QuotationMarks.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/Strokes.h"
#include "platform/linux/recognition/Utf8.h"

namespace lumiscan::desktop {

namespace {

int middleOf(const PixelBox& box) { return (box.left + box.right) / 2; }

bool isQuote(std::string_view text) {
  constexpr std::string_view quotes[] = {"'", "\"", "`", "‘", "’", "“", "”"};
  return std::find(std::begin(quotes), std::end(quotes), text) != std::end(quotes);
}

bool isWithinWord(const std::vector<Symbol>& symbols, std::size_t i) {
  const auto isLetter = [](const Symbol& symbol) {
    return u_isalpha(static_cast<UChar32>(onlyCodePoint(symbol.text)));
  };
  return i > 0 && i + 1 < symbols.size() && !symbols[i].spaceBefore && !symbols[i + 1].spaceBefore &&
         isLetter(symbols[i - 1]) && isLetter(symbols[i + 1]);
}

/// Whether an apostrophe within a word stands where a Romance language leaves a vowel out, as in l'on or
/// qu'il.
bool isElision(const std::vector<Symbol>& symbols, std::size_t apostrophe) {
  const auto startsWord = [&](std::size_t i) { return i == 0 || symbols[i].spaceBefore; };
  const auto is = [&](std::size_t i, std::string_view letters) {
    return symbols[i].text.size() == 1 && letters.find(symbols[i].text) != std::string_view::npos;
  };
  const std::size_t before = apostrophe - 1;
  return (startsWord(before) && is(before, "cdjlmnstCDJLMNST")) ||
         (before > 0 && startsWord(before - 1) && is(before - 1, "qQ") && is(before, "uU"));
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

/// Whether a single mark is curly, by its shape and by how it stands: at the size of a few pixels neither
/// tells it for sure.
bool isCurly(const QuoteMark& mark, LineShapes shapes) {
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const PixelBox box = shapes.box(i);
    if (box.left != mark.box.left || box.right != mark.box.right) continue;
    const Classification& shape = shapes.classification(i);
    return shape.of(U'’') > 0.5F || (!mark.straight && shape.of(U'’') > shape.of(U'\''));
  }
  return false;
}

/// Whether a stroke belongs to the same mark as the one before: they share a place or, where characters have
/// widths of their own, stand closer than marks do.
bool isSecondStroke(const PixelBox& before, const PixelBox& stroke, const TextLine& line) {
  if (!line.cells) return 2 * (stroke.left - before.right) <= line.letterHeight;
  const auto placeOf = [&](const PixelBox& box) {
    return std::lround(line.cells->placeOf((box.left + box.right) / 2.0));
  };
  return placeOf(before) == placeOf(stroke);
}

}  // namespace

std::vector<Symbol> readQuotationMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                       const TextLine& line) {
  std::vector<PixelBox> strokes;
  for (const Glyph& glyph : glyphs) {
    // Two strokes may touch.
    if (glyph.height() < 3 || 5 * glyph.height() >= 4 * line.letterHeight ||
        2 * glyph.width() > 3 * glyph.height())
      return {};
    for (const PixelBox& stroke : strokesAlong(ink, glyph.box)) {
      const Glyph single{stroke};
      if (10 * single.height() < 13 * single.width() || !isStraight(single, ink)) return {};
      strokes.push_back(stroke);
    }
  }
  constexpr double sure = 99;
  std::vector<Symbol> symbols;
  for (const PixelBox& stroke : strokes) {
    if (!symbols.empty() && symbols.back().text == "'" && isSecondStroke(symbols.back().box, stroke, line)) {
      symbols.back().text = "\"";
      symbols.back().box.right = stroke.right;
    } else {
      symbols.push_back({"'", false, stroke, sure, true, false});
    }
  }
  return symbols;
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
    const auto place = static_cast<std::size_t>(nearest - symbols.data());
    // What is set in cells is code, which has straight ones.
    const bool isApostrophe = mark.strokes == 1 && !line.cells && isWithinWord(symbols, place);
    // Within a word there are no opening marks.
    const bool becomesCurly =
        isApostrophe && (isCurly(mark, {ink, line, glyphs}) ||
                         (!mark.straight && (nearest->text == "‘" || isElision(symbols, place))));
    if (becomesCurly)
      nearest->text = "’";
    else if (mark.straight)
      nearest->text = std::string(1, mark.strokes == 1 ? '\'' : '"');
  }
  // Whoever sets straight ones sets them on both sides.
  if (std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) { return symbol.text == "\""; }))
    for (Symbol& symbol : symbols)
      if (symbol.text == "“" || symbol.text == "”") symbol.text.assign(1, '"');
}

}  // namespace lumiscan::desktop
