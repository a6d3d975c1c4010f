#include "platform/linux/recognition/QuotationPairs.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/QuotationShapes.h"

namespace lumiscan::desktop {

namespace {

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

/// Makes a single mark double that faces a double one: one of its strokes touches the letter beside it. Of
/// marks side by side all strokes are free.
void matchDoubles(std::vector<Symbol>& symbols) {
  const auto isBesideMark = [&](std::size_t i) {
    return (i > 0 && !symbols[i].spaceBefore && isQuote(symbols[i - 1].text)) ||
           (i + 1 < symbols.size() && !symbols[i + 1].spaceBefore && isQuote(symbols[i + 1].text));
  };
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
    if (!isDouble(symbols[i]) && isDouble(symbols[next]) && !isBesideMark(i))
      symbols[i].text = std::string(symbols[next].text == "\"" ? "\"" : "“");
    else if (symbols[i].text == "“" && !isDouble(symbols[next]) && isLast && !isBesideMark(next))
      symbols[next].text = std::string("”");
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

}  // namespace

bool isQuote(std::string_view character) {
  constexpr std::string_view quotes[] = {"'", "\"", "`", "‘", "’", "“", "”"};
  return std::find(std::begin(quotes), std::end(quotes), character) != std::end(quotes);
}

bool isCurlySingle(const Symbol& symbol) { return symbol.text == "‘" || symbol.text == "’"; }

bool isDouble(const Symbol& symbol) {
  return symbol.text == "\"" || symbol.text == "“" || symbol.text == "”";
}

bool isWithinWord(const std::vector<Symbol>& symbols, std::size_t i) {
  const auto isLetter = [](const Symbol& symbol) {
    return u_isalpha(static_cast<UChar32>(onlyCodePoint(symbol.text)));
  };
  return i > 0 && i + 1 < symbols.size() && !symbols[i].spaceBefore && !symbols[i + 1].spaceBefore &&
         isLetter(symbols[i - 1]) && isLetter(symbols[i + 1]);
}

bool opens(const std::vector<Symbol>& symbols, std::size_t i) {
  // Before a word and behind a mark that opens it begins a quotation within a quotation.
  std::size_t next = i + 1;
  while (next < symbols.size() && !symbols[next].spaceBefore && isQuote(symbols[next].text)) ++next;
  const bool isBeforeWord = next < symbols.size() && !symbols[next].spaceBefore &&
                            std::string_view(")]}>,.;:!?").find(symbols[next].text) == std::string_view::npos;
  while (isBeforeWord && i > 0 && !symbols[i].spaceBefore && isQuote(symbols[i - 1].text)) --i;
  return i == 0 || symbols[i].spaceBefore ||
         std::string_view("([{<").find(symbols[i - 1].text) != std::string_view::npos;
}

void matchQuotes(std::vector<Symbol>& symbols, const GreyBitmap& ink, bool areInCells) {
  if (!areInCells) matchDoubles(symbols);
  matchSides(symbols, ink);
}

}  // namespace lumiscan::desktop
