#include "platform/linux/recognition/QuotationMarks.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/Curliness.h"
#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/QuotationPairs.h"
#include "platform/linux/recognition/QuotationShapes.h"
#include "platform/linux/recognition/QuotationStrokes.h"
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

constexpr double leastLean = 0.03;  // Most straight marks stand within it, at the size of a few pixels too.

bool leans(const QuoteMark& mark) { return std::abs(mark.lean) >= leastLean; }

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

/// Of a double mark, whose symbol is at `place`, each stroke may have been read as a mark of its own, which
/// is left without text.
void dropOtherStroke(std::vector<Symbol>& symbols, std::size_t place, const PixelBox& mark) {
  const auto isOtherStroke = [&](std::size_t i) {
    return i < symbols.size() && isQuote(symbols[i].text) && symbols[i].box.left >= mark.left &&
           symbols[i].box.right <= mark.right;
  };
  if (isOtherStroke(place + 1)) {
    symbols[place + 1].text.clear();
  } else if (place > 0 && isOtherStroke(place - 1)) {
    symbols[place].spaceBefore = symbols[place - 1].spaceBefore;
    symbols[place - 1].text.clear();
  }
}

/// A mark and the place of the symbol that it was read as.
struct FoundMark {
  QuoteMark ink;
  std::size_t place;
};

/// Whether a symbol is a mark or what three strokes side by side are taken for.
bool mayBeMark(const Symbol& symbol) { return isQuote(symbol.text) || symbol.text == "™"; }

/// Gives each of two straight marks side by side that were read as one a symbol of its own.
void separateMarks(std::vector<FoundMark>& marks, std::vector<Symbol>& symbols) {
  for (std::size_t i = 1; i < marks.size(); ++i) {
    const FoundMark& first = marks[i - 1];
    const FoundMark& second = marks[i];
    const auto isClear = [](const QuoteMark& mark) { return mark.straight && !mark.touching; };
    if (first.place != second.place || !isClear(first.ink) || !isClear(second.ink)) continue;
    const auto symbolOf = [](const QuoteMark& mark, bool spaceBefore) {
      return Symbol{std::string(mark.strokes == 1 ? "'" : "\""), spaceBefore, mark.box, 90, true, false};
    };
    const auto place = symbols.begin() + static_cast<std::ptrdiff_t>(first.place);
    *place = symbolOf(first.ink, place->spaceBefore);
    symbols.insert(place + 1, symbolOf(second.ink, false));
    for (std::size_t later = i; later < marks.size(); ++later) ++marks[later].place;
  }
}

std::vector<FoundMark> findMarks(const QuotedLine& line, const GreyBitmap& ink) {
  std::vector<Symbol>& symbols = *line.symbols;
  std::vector<FoundMark> found;
  const std::vector<QuoteMark> marks = quoteMarks(*line.glyphs, ink, *line.line);
  const auto isBesideMark = [&](const QuoteMark& mark) {
    return std::any_of(marks.begin(), marks.end(), [&](const QuoteMark& other) {
      const int gap = std::max(other.box.left - mark.box.right, mark.box.left - other.box.right);
      return gap > 0 && 2 * gap <= line.line->letterHeight && other.strokes == 2 && !other.touching;
    });
  };
  for (QuoteMark mark : marks) {
    const auto distance = [&](const Symbol& symbol) {
      return std::abs(middleOf(symbol.box) - middleOf(mark.box));
    };
    std::optional<std::size_t> nearest;
    for (std::size_t i = 0; i < symbols.size(); ++i)
      if (mayBeMark(symbols[i]) && (!nearest || distance(symbols[i]) < distance(symbols[*nearest])))
        nearest = i;
    if (!nearest || distance(symbols[*nearest]) > line.line->letterHeight) continue;
    const bool hasTwin = isDouble(symbols[*nearest])
                             ? hasTwinAtLetter(mark, ink)
                             : !isWithinWord(symbols, *nearest) && hasClearTwin(mark, ink);
    if (mark.strokes == 1 && !isBesideMark(mark) && hasTwin) mark.strokes = 2;
    if (!mark.touching || (isDouble(symbols[*nearest]) && symbols[*nearest].box == mark.box))
      found.push_back({mark, *nearest});
  }
  separateMarks(found, symbols);
  std::erase_if(found, [&](const FoundMark& mark) { return !isQuote(symbols[mark.place].text); });
  return found;
}

/// The sum over a line's double marks and apostrophes. Marks in cells aren't looked at: that is code.
double curlinessOf(const QuotedLine& line, const std::vector<FoundMark>& marks, const GreyBitmap& ink) {
  const std::vector<Symbol>& symbols = *line.symbols;
  std::optional<LineShapes> shapes;
  std::vector<bool> isFound(symbols.size(), false);
  double sum = 0;
  for (const FoundMark& mark : marks) {
    if (line.line->cells || (mark.ink.strokes == 1 && !isWithinWord(symbols, mark.place))) continue;
    isFound[mark.place] = true;
    if (!shapes) shapes.emplace(ink, *line.line, *line.glyphs);
    sum += curliness(mark.ink, symbols[mark.place], opens(symbols, mark.place), *shapes);
  }
  for (std::size_t i = 0; i < symbols.size(); ++i)
    if (isDouble(symbols[i]) && !isFound[i]) sum += curlinessAsRead(symbols[i]);
  return sum;
}

/// Makes a mark one of as many strokes as its ink has, and straight where that is clear.
void correctStrokes(const FoundMark& mark, const QuotedLine& line) {
  std::vector<Symbol>& symbols = *line.symbols;
  Symbol& symbol = symbols[mark.place];
  const bool isSingle = mark.ink.strokes == 1;
  if (isSingle && !line.line->cells && isWithinWord(symbols, mark.place))
    symbol.text = std::string(!mark.ink.straight && isElision(symbols, mark.place) ? "’" : "'");
  else if (mark.ink.straight && (isSingle || line.line->cells) && !(isCurlySingle(symbol) && leans(mark.ink)))
    symbol.text.assign(1, isSingle ? '\'' : '"');
  else if (!isSingle)
    makeDouble(symbol);
  if (!isSingle) dropOtherStroke(symbols, mark.place, mark.ink.box);
}

/// Makes all double marks and apostrophes of a line curly, each double one facing what it surrounds, or all
/// double ones straight.
void makeAlike(std::vector<Symbol>& symbols, bool curly) {
  // Where „ opens, “ closes.
  const bool isGerman =
      std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) { return symbol.text == "„"; });
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    if (isDouble(symbols[i]) && !isGerman)
      symbols[i].text = std::string(!curly ? "\"" : opens(symbols, i) ? "“" : "”");
    else if (curly && symbols[i].text == "'" && isWithinWord(symbols, i))
      symbols[i].text = std::string("’");
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

void correctQuotes(const std::vector<QuotedLine>& lines, const GreyBitmap& ink) {
  std::vector<std::vector<FoundMark>> marks;
  std::vector<double> curliness;
  for (const QuotedLine& line : lines) {
    marks.push_back(findMarks(line, ink));
    curliness.push_back(curlinessOf(line, marks.back(), ink));
  }
  const double all = std::accumulate(curliness.begin(), curliness.end(), 0.0);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::vector<Symbol>& symbols = *lines[i].symbols;
    for (const FoundMark& mark : marks[i]) correctStrokes(mark, lines[i]);
    std::erase_if(symbols, [](const Symbol& symbol) { return symbol.text.empty(); });
    matchQuotes(symbols, ink, lines[i].line->cells.has_value());
    const double others = lines[i].line->cells ? 0 : all - curliness[i];
    makeAlike(symbols, areCurly(curliness[i], others));
  }
}

}  // namespace lumiscan::desktop
