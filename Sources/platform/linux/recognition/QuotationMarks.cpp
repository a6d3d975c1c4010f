#include "platform/linux/recognition/QuotationMarks.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/QuotationPairs.h"
#include "platform/linux/recognition/QuotationShapes.h"
#include "platform/linux/recognition/Strokes.h"

namespace lumiscan::desktop {

namespace {

int middleOf(const PixelBox& box) { return (box.left + box.right) / 2; }

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
  double lean;  // See `Halves`.
};

std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line) {
  std::vector<QuoteMark> marks;
  const auto add = [&](const PixelBox& stroke) {
    const bool second = !marks.empty() && marks.back().strokes == 1 &&
                        2 * (stroke.left - marks.back().box.right) <= line.letterHeight;
    if (second) {
      QuoteMark& mark = marks.back();
      mark.strokes = 2;
      mark.box.right = stroke.right;
      mark.box.top = std::min(mark.box.top, stroke.top);
      mark.box.bottom = std::max(mark.box.bottom, stroke.bottom);
      // Of few pixels, one stroke alone may seem to lean.
      mark.straight = isStraight(mark.box, ink);
      mark.lean = halvesOf(mark.box, ink).lean;
    } else {
      marks.push_back({stroke, 1, isStraight(stroke, ink), halvesOf(stroke, ink).lean});
    }
  };
  for (const Glyph& glyph : glyphs) {
    const bool high = glyph.box.bottom < line.baseline - line.letterHeight / 2;
    if (!high || glyph.height() < 3) continue;
    // Dots and accents have their letter below them.
    const bool overLetter = std::any_of(glyphs.begin(), glyphs.end(), [&](const Glyph& other) {
      return other.box.top > glyph.box.bottom && other.box.left <= glyph.box.right &&
             other.box.right >= glyph.box.left && !isBeneathQuotationMark(other, glyph);
    });
    if (overLetter) continue;
    if (isSlender(glyph.box)) {
      if (2 * glyph.width() <= line.letterHeight) add(glyph.box);
      continue;
    }
    // The strokes of a straight double mark may touch.
    const std::vector<PixelBox> strokes = strokesAlong(ink, glyph.box);
    const bool areTwo =
        strokes.size() == 2 && std::all_of(strokes.begin(), strokes.end(), [&](const PixelBox& stroke) {
          return isSlender(stroke) && isStraight(stroke, ink);
        });
    if (areTwo) std::for_each(strokes.begin(), strokes.end(), add);
  }
  return marks;
}

constexpr double leastLean = 0.03;  // Most straight marks stand within it, at the size of a few pixels too.

bool leans(const QuoteMark& mark) { return std::abs(mark.lean) >= leastLean; }

/// How likely an apostrophe is to be curly, as the logarithm of the odds: by its shape, by what the engine
/// read and by its lean. None of them alone tells at the size of a few pixels.
double curliness(const QuoteMark& mark, const Symbol& symbol, LineShapes shapes) {
  constexpr double engineTells = 1.5;
  constexpr double straightLean = 0.05;  // Straight ones lean so far at most,
  constexpr double mostLean = 0.25;      // more than this tells no more.
  constexpr double leanTells = 30;
  double odds = isCurlySingle(symbol) ? engineTells : -engineTells;
  odds += leanTells * std::clamp(-mark.lean - straightLean, 0.0, mostLean - straightLean);
  if (mark.box.width() < 3) odds -= 1;  // Pixels; hardly room for a tail,
  const int height = mark.box.bottom - mark.box.top + 1;
  if (height < 5 && mark.lean > -leastLean) odds -= 3;  // none to see here.
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const PixelBox box = shapes.box(i);
    if (box.left != mark.box.left || box.right != mark.box.right) continue;
    constexpr double least = 0.02;
    const Classification& shape = shapes.classification(i);
    odds += std::log((shape.of(U'’') + least) / (shape.of(U'\'') + least));
  }
  return odds;
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

/// One mark of two strokes, of which the second may stand over the foot of the next letter.
void makeDouble(Symbol& symbol) {
  constexpr std::pair<std::string_view, std::string_view> marks[] = {{"'", "\""}, {"‘", "“"}, {"’", "”"}};
  for (const auto& [single, both] : marks)
    if (symbol.text == single) {
      symbol.text = std::string(both);
      return;
    }
}

/// Of a double mark, whose symbol is at `place`, each stroke may have been read as a mark of its own.
void dropOtherStroke(std::vector<Symbol>& symbols, std::size_t place, const PixelBox& mark) {
  const auto isOtherStroke = [&](std::size_t i) {
    return i < symbols.size() && isQuote(symbols[i].text) && symbols[i].box.left >= mark.left &&
           symbols[i].box.right <= mark.right;
  };
  if (isOtherStroke(place + 1)) {
    symbols.erase(symbols.begin() + static_cast<std::ptrdiff_t>(place) + 1);
  } else if (place > 0 && isOtherStroke(place - 1)) {
    symbols[place].spaceBefore = symbols[place - 1].spaceBefore;
    symbols.erase(symbols.begin() + static_cast<std::ptrdiff_t>(place) - 1);
  }
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
      if (!isSlender(stroke) || !isStraight(stroke, ink)) return {};
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
    const bool isCurly =
        isApostrophe && (curliness(mark, *nearest, {ink, line, glyphs}) > 0 ||
                         (!mark.straight && (nearest->text == "‘" || isElision(symbols, place))));
    // Within a word there are no opening marks.
    if (isApostrophe) nearest->text = std::string(isCurly ? "’" : "'");
    // The engine tells straight double ones from curly ones.
    else if (mark.straight && (mark.strokes == 1 || line.cells) && !(isCurlySingle(*nearest) && leans(mark)))
      nearest->text = std::string(1, mark.strokes == 1 ? '\'' : '"');
    else if (mark.strokes == 2)
      makeDouble(*nearest);
    if (mark.strokes == 2) dropOtherStroke(symbols, place, mark.box);
  }
  matchQuotes(symbols, ink);
}

}  // namespace lumiscan::desktop
