#include "platform/linux/recognition/SymbolCorrections.h"

#include <unicode/uchar.h>

#include <string_view>

#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

bool isQuote(char32_t c) { return std::u32string_view(U"'\"`‘’“”´").find(c) != std::u32string_view::npos; }

/// Whether two letters are cases of one and differ in size alone, of which the engine knows more.
bool differInSizeAlone(char32_t a, char32_t b) {
  const UChar32 folded = u_foldCase(static_cast<UChar32>(a), U_FOLD_CASE_DEFAULT);
  return folded == u_foldCase(static_cast<UChar32>(b), U_FOLD_CASE_DEFAULT) &&
         std::u32string_view(U"abdefghlmnqrt").find(static_cast<char32_t>(folded)) ==
             std::u32string_view::npos;
}

bool isBracket(char32_t c) { return std::u32string_view(U"()[]{}").find(c) != std::u32string_view::npos; }

/// How sure the classifier must be of its own character, and how sure that the engine's is wrong. The engine
/// knows words: among letters it is seldom wrong, among quotation marks it is partial to those of books.
struct Demand {
  float least;  // Probability of the classifier's character,
  float most;   // and of the engine's.
};

Demand demandFor(char32_t read, char32_t seen, double confidence, bool isInCells) {
  const bool isSure = confidence >= surely;
  const bool isTorn = confidence < 70;  // Readings differ.
  // The engine takes zeros with a dot or a stroke for it.
  if (read == U'@' && seen == U'0') return {0.5F, 0.5F};
  // Nothing but its stroke makes an S of the one the other.
  if (read == U'S' && seen == U'$') return {0.7F, 0.1F};
  if (isBracket(read) && isBracket(seen)) return {0.9F, 0.06F};
  // The bar of an e may be faint; but the engine takes wc for a word.
  if (read == U'e' && seen == U'c' && !isInCells) return {0.99F, 1e-4F};
  if (isQuote(seen) && !isLetter(read)) return {0.5F, 0.3F};
  if (isDigit(seen) && !isLetter(read)) return {0.8F, 0.05F};
  if (u_tolower(static_cast<UChar32>(read)) == u_tolower(static_cast<UChar32>(seen))) return {0.9F, 0.05F};
  if (isSure || (isLetter(read) && isLetter(seen))) return {0.99F, 0.001F};
  if (isLetter(seen)) return {0.98F, 0.01F};
  if (isTorn) return {0.6F, 0.1F};
  if (isLetter(read)) return {0.8F, 0.02F};
  return confidence > 90 ? Demand{0.98F, 0.01F} : Demand{0.8F, 0.1F};
}

/// Whether a letter of which the engine is sure would become a capital or no capital, or one amid small
/// letters or the other way round, which words seldom have.
bool breaksCase(char32_t read, char32_t seen, bool isSure, const Neighbours& beside) {
  const auto isUpper = [](char32_t c) { return u_isupper(static_cast<UChar32>(c)); };
  const auto isLower = [](char32_t c) { return u_islower(static_cast<UChar32>(c)); };
  if (u_tolower(static_cast<UChar32>(read)) != u_tolower(static_cast<UChar32>(seen))) return false;
  return isSure || (isUpper(seen) ? isLower(beside.before) : isUpper(beside.before) && isUpper(beside.after));
}

/// Whether what is beside a zero speaks for an O: IO, $^O, -O2, OSError. 0xFF, 0.5 and 0UL are numbers.
bool mayBeO(const Neighbours& beside) {
  const auto isOneOf = [](std::u32string_view characters, char32_t c) {
    return characters.find(c) != std::u32string_view::npos;
  };
  if (beside.isOption && beside.after != U'.') return true;
  if (isDigit(beside.before) || isDigit(beside.after)) return false;
  const bool isBeforeCapital =
      u_isupper(static_cast<UChar32>(beside.after)) && !isOneOf(U"ABCDEFLUX", beside.after);
  return isBeforeCapital || isOneOf(U"I^", beside.before) ||
         (beside.after == U'_' && !isLetter(beside.before) && beside.before != U'_');
}

}  // namespace

bool isLetter(char32_t c) { return u_isalpha(static_cast<UChar32>(c)); }

bool isDigit(char32_t c) { return c >= U'0' && c <= U'9'; }

void correctSymbol(Symbol& symbol, const Classification& shape, const Neighbours& beside, bool isInCells) {
  const char32_t read = onlyCodePoint(symbol.text);
  const char32_t seen = shape.best();
  if (read == seen || seen == Classification::noCharacter || !shape.knows(read)) return;
  // As in v8.
  if (beside.isBeforeTallDigit && shape.bestProbability() > 0.5F &&
      seen == static_cast<char32_t>(u_tolower(static_cast<UChar32>(read)))) {
    symbol.text = utf8Of(seen);
    return;
  }
  // Where characters have one width an l has a foot and no shape of other letters.
  const bool isSmallL = isInCells && read == U'L' && seen == U'l' && shape.bestProbability() > 0.99F;
  if (differInSizeAlone(read, seen) ||
      (!isSmallL && breaksCase(read, seen, symbol.confidence >= surely, beside)))
    return;
  // One of two strokes may touch the letter beside it.
  constexpr double clearly = 94;
  if (read == U'"' && seen == U'\'' && !isInCells && symbol.confidence >= clearly &&
      shape.bestProbability() > 0.7F)
    return;
  const Demand demand = demandFor(read, seen, symbol.confidence, isInCells);
  // The engine prefers those of books.
  if (isQuote(read) && isQuote(seen) && shape.bestProbability() >= 2 * shape.of(read))
    symbol.text = utf8Of(seen);
  if (shape.bestProbability() >= demand.least && shape.of(read) <= demand.most) symbol.text = utf8Of(seen);
}

void correctStroke(Symbol& symbol, const Classification& shape, const Neighbours& beside,
                   std::size_t capitalsBefore, const TextLine& line) {
  const char32_t read = onlyCodePoint(symbol.text);
  // F1 is a key.
  const bool besideDigit = isDigit(beside.before) || isDigit(beside.after) || beside.before == U'F';
  const bool besideLetter = isLetter(beside.before) || isLetter(beside.after);
  const bool opensWord = beside.before == Classification::noCharacter ||
                         std::u32string_view(U"'\"‘“„«([").find(beside.before) != std::u32string_view::npos;
  const bool isAlone = opensWord && beside.after == Classification::noCharacter;
  const auto become = [&](char c) { symbol.text.assign(1, c); };
  const auto isSmall = [](char32_t c) { return u_islower(static_cast<UChar32>(c)); };
  const auto isCapital = [](char32_t c) { return u_isupper(static_cast<UChar32>(c)); };
  constexpr float hardly = 0.02F;
  constexpr float possible = 0.05F;
  constexpr float rarely = 0.3F;
  constexpr float mostly = 0.6F;
  // Below which bars reach.
  const bool endsOnLine = 8 * (symbol.box.bottom + 1 - line.baseline) <= line.letterHeight;
  // In code, names have digits at their end, too.
  const bool isOne = line.cells && shape.of(U'1') > 0.75F && shape.of(U'1') > 5 * shape.of(read);
  const bool isAmidSmall = isSmall(beside.before) && isSmall(beside.after) && symbol.confidence < surely;
  // As Item, Index and Id in names of several words.
  const bool mayBeginPart = std::u32string_view(U"ndtmcsfp").find(beside.after) != std::u32string_view::npos;
  const bool isSmallL =
      isAmidSmall && read == U'I' && !mayBeginPart && shape.of(U'l') > 1.5F * shape.of(U'I');
  const bool isCapitalI = isAmidSmall && read == U'l' && mayBeginPart && shape.of(U'I') > mostly &&
                          shape.of(U'I') > 3 * shape.of(U'l');
  // As in I'm.
  const bool isPronoun = read == U'|' && opensWord && endsOnLine && !line.cells &&
                         (beside.after == U'\'' || beside.after == U'’');
  if (read == U'|' && endsOnLine && shape.of(U'|') < rarely && shape.of(U'I') + shape.of(U'l') > mostly) {
    become(isLetter(beside.before) ? 'l' : 'I');
  } else if (isPronoun ||
             (read == U'!' && isAlone && shape.of(U'!') < 0.1F && shape.of(U'I') + shape.of(U'l') > 0.8F)) {
    become('I');
  } else if (read == U'l' && (isAlone || (opensWord && !line.cells && isCapital(beside.after)))) {
    if (shape.of(U'I') >= hardly) become('I');
  } else if (isSmallL || isCapitalI) {
    become(isSmallL ? 'l' : 'I');
  } else if (read == U'l' && capitalsBefore > 0 && !isLetter(beside.after) && !besideDigit) {
    // An acronym; behind one capital it may be a short name, but AI is more common than Al.
    const bool isAcronym = capitalsBefore > 1 || (beside.before == U'A' && !line.cells);
    if (shape.of(U'I') >= (isAcronym ? possible : rarely)) become('I');
  } else if (read == U'1' && opensWord && !besideLetter && !besideDigit && beside.after != U':') {
    if (shape.of(U'1') < possible && shape.of(U'I') + shape.of(U'l') > mostly)
      become(line.cells && shape.of(U'l') > shape.of(U'I') ? 'l' : 'I');
  } else if (read == U'l' || read == U'I' || read == U'i') {
    if (isOne || (besideDigit && 3 * shape.of(U'1') > shape.of(read))) become('1');
  } else if (read == U'1' && !besideDigit && (besideLetter || (line.cells && beside.before == U'-'))) {
    // An option's letter.
    if (shape.of(U'l') > (besideLetter ? 3.0F : 8.0F) * shape.of(U'1')) become('l');
  }
}

void correctZero(Symbol& symbol, const Classification& shape, const Neighbours& beside,
                 const TextLine& line) {
  constexpr float surelyZero = 0.9F;
  constexpr float mostOfO = 0.4F, leastOfZero = 0.6F;  // Of a zero's probability less that of an O.
  const float zero = shape.of(U'0') - shape.of(U'O');
  if (line.cells && symbol.text == "O" && zero >= leastOfZero) symbol.text.assign(1, '0');
  if (symbol.text != "0" || shape.of(U'0') >= surelyZero || shape.of(U'O') < 0.2F) return;
  const auto isCapital = [](char32_t c) { return u_isupper(static_cast<UChar32>(c)); };
  const auto isHexadecimal = [](char32_t c) { return c >= U'A' && c <= U'F'; };
  const bool isAmidCapitals = isCapital(beside.before) && isCapital(beside.after) &&
                              !(isHexadecimal(beside.before) && isHexadecimal(beside.after));
  if (isAmidCapitals || (line.cells && zero < mostOfO && mayBeO(beside))) symbol.text.assign(1, 'O');
}

}  // namespace lumiscan::desktop
