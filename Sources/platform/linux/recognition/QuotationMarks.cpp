#include "platform/linux/recognition/QuotationMarks.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>

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
  double lean;  // See `Halves`.
};

/// How the upper and the lower half of a mark differ.
struct Halves {
  double lean = 0;    // How far the lower one stands to the right of the upper one, in heights of the mark.
  double weight = 0;  // The ink of the lower one for that of the upper one; 0 where one has none.
};

Halves halvesOf(const PixelBox& box, const GreyBitmap& ink) {
  double sums[2] = {0, 0};
  double weights[2] = {0, 0};
  const int height = box.bottom - box.top + 1;
  for (int y = box.top; y <= box.bottom; ++y) {
    const int fromTop = 2 * (y - box.top) + 1;
    if (fromTop == height) continue;  // The row in the middle.
    const int half = fromTop > height ? 1 : 0;
    for (int x = box.left; x <= box.right; ++x) {
      sums[half] += x * static_cast<double>(ink.at(x, y));
      weights[half] += static_cast<double>(ink.at(x, y));
    }
  }
  if (weights[0] == 0 || weights[1] == 0) return {};
  return {(sums[1] / weights[1] - sums[0] / weights[0]) / height, weights[1] / weights[0]};
}

/// Straight marks stand upright and taper off downwards, if at all; curly ones lean, or are heavier below.
bool isStraight(const PixelBox& box, const GreyBitmap& ink) {
  constexpr double mostLean = 0.1;
  constexpr double mostBelow = 1.2;
  const Halves halves = halvesOf(box, ink);
  return std::abs(halves.lean) < mostLean && halves.weight <= mostBelow;
}

/// How much the ink of two marks differs, one of them turned upside down if asked, from 0 to 1.
double difference(const PixelBox& a, const PixelBox& b, bool turned, const GreyBitmap& ink) {
  const int width = std::max(a.right - a.left, b.right - b.left);
  const int height = std::max(a.bottom - a.top, b.bottom - b.top);
  const auto at = [&](const PixelBox& box, int x, int y) {
    const bool inside = x >= 0 && y >= 0 && box.left + x <= box.right && box.top + y <= box.bottom;
    return inside ? static_cast<int>(ink.at(box.left + x, box.top + y)) : 0;
  };
  double differing = 0;
  double all = 0;
  for (int y = 0; y <= height; ++y)
    for (int x = 0; x <= width; ++x) {
      const int one = at(a, x, y);
      const int other = turned ? at(b, b.right - b.left - x, b.bottom - b.top - y) : at(b, x, y);
      differing += std::abs(one - other);
      all += std::max(one, other);
    }
  return all == 0 ? 0 : differing / all;
}

bool isCurlySingle(const Symbol& symbol) { return symbol.text == "‘" || symbol.text == "’"; }

/// A single mark, or what is taken for a double one beside a backtick.
bool maySurround(const Symbol& symbol) {
  return symbol.text == "'" || symbol.text == "`" || symbol.text == "“" || symbol.text == "”" ||
         isCurlySingle(symbol);
}

/// What two marks on both sides of something are whose ink is the same: curly ones are each other turned
/// upside down. Empty where they aren't the same, or it isn't clear.
std::string_view twinMarks(const Symbol& opening, const Symbol& closing, const GreyBitmap& ink) {
  constexpr double alike = 0.35;
  constexpr double clearly = 0.7;
  const double same = difference(opening.box, closing.box, false, ink);
  if (same > alike || same > clearly * difference(opening.box, closing.box, true, ink)) return {};
  if (opening.text == "'" || closing.text == "'") return "'";
  const double lean = halvesOf(opening.box, ink).lean;
  return lean > 0.15 ? "`" : std::abs(lean) < 0.1 ? "'" : std::string_view();
}

/// Whether a mark stands before what it surrounds.
bool opens(const std::vector<Symbol>& symbols, std::size_t i) {
  return i == 0 || symbols[i].spaceBefore ||
         std::string_view("([{<").find(symbols[i - 1].text) != std::string_view::npos;
}

bool isDouble(const Symbol& symbol) {
  return symbol.text == "\"" || symbol.text == "“" || symbol.text == "”";
}

/// Makes a single mark double that faces a double one: one of its strokes touches the letter beside it.
void matchDoubles(std::vector<Symbol>& symbols) {
  const auto isMark = [&](std::size_t i) {
    return (symbols[i].text == "'" || isCurlySingle(symbols[i]) || isDouble(symbols[i])) &&
           !isWithinWord(symbols, i);
  };
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    if (!isMark(i) || !opens(symbols, i)) continue;
    std::size_t next = i + 1;
    while (next < symbols.size() && !isMark(next)) ++next;
    if (next == symbols.size() || opens(symbols, next)) continue;
    // An apostrophe may end a word amid the quotation.
    const bool isLast =
        std::none_of(symbols.begin() + static_cast<std::ptrdiff_t>(next) + 1, symbols.end(), isDouble);
    if (!isDouble(symbols[i]) && isDouble(symbols[next]))
      symbols[i].text = std::string(symbols[next].text == "\"" ? "\"" : "“");
    else if (symbols[i].text == "“" && !isDouble(symbols[next]) && isLast)
      symbols[next].text = std::string("”");
  }
}

/// Makes all double marks straight or curly, as most of them are, and each curly one face what it surrounds.
/// Whoever sets curly ones sets curly apostrophes.
void agreeOnDoubles(std::vector<Symbol>& symbols) {
  const auto isStraight = [](const Symbol& symbol) { return symbol.text == "\""; };
  const auto all = std::count_if(symbols.begin(), symbols.end(), isDouble);
  const auto straight = std::count_if(symbols.begin(), symbols.end(), isStraight);
  const bool areCurly = 2 * straight < all;
  // Where „ opens, “ closes.
  const bool isGerman =
      std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) { return symbol.text == "„"; });
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    Symbol& symbol = symbols[i];
    if (isDouble(symbol) && !areCurly)
      symbol.text.assign(1, '"');
    else if (isDouble(symbol) && (isStraight(symbol) || (!isGerman && !opens(symbols, i))))
      symbol.text = std::string(opens(symbols, i) ? "“" : "”");
    else if (areCurly && symbol.text == "'" && isWithinWord(symbols, i))
      symbol.text = std::string("’");
  }
}

/// Makes single marks on both sides of something the same if their ink is. Backticks quote code on both
/// sides, and whoever uses them doesn't use curly marks beside them.
void matchSides(std::vector<Symbol>& symbols, const GreyBitmap& ink) {
  struct Pair {
    Symbol *opening, *closing;
    bool has(std::string_view text) const { return opening->text == text || closing->text == text; }
    bool hasCurlySingle() const { return isCurlySingle(*opening) || isCurlySingle(*closing); }
  };
  std::vector<Pair> pairs;
  Symbol* opening = nullptr;
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    Symbol& symbol = symbols[i];
    if (!maySurround(symbol) || isWithinWord(symbols, i)) continue;
    if (opens(symbols, i))
      opening = &symbol;
    else if (opening)
      pairs.push_back({std::exchange(opening, nullptr), &symbol});
  }
  const auto become = [](const Pair& pair, std::string_view text) {
    pair.opening->text = std::string(text);
    pair.closing->text = std::string(text);
  };
  bool hasBackticks = false;
  for (const Pair& pair : pairs) {
    if (pair.has("`") && !pair.has("'")) become(pair, "`");
    if (pair.hasCurlySingle() && pair.opening->hasOwnInk && pair.closing->hasOwnInk) {
      const std::string_view text = twinMarks(*pair.opening, *pair.closing, ink);
      if (!text.empty()) become(pair, text);
    }
    hasBackticks = hasBackticks || pair.has("`");
  }
  for (const Pair& pair : pairs)
    if (pair.hasCurlySingle() && (hasBackticks || pair.has("'"))) become(pair, hasBackticks ? "`" : "'");
}

bool isSlender(const PixelBox& box) { return 10 * (box.bottom - box.top + 1) >= 13 * box.width(); }

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
             other.box.right >= glyph.box.left;
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
  matchDoubles(symbols);
  matchSides(symbols, ink);
  agreeOnDoubles(symbols);
}

}  // namespace lumiscan::desktop
