#include "platform/linux/recognition/ShapeCorrections.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/Alignment.h"
#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

bool isLetter(char32_t c) { return u_isalpha(static_cast<UChar32>(c)); }

bool isQuote(char32_t c) { return std::u32string_view(U"'\"`‘’“”´").find(c) != std::u32string_view::npos; }

bool isDigit(char32_t c) { return c >= U'0' && c <= U'9'; }

/// Whether two letters are cases of one and differ in size alone, of which the engine knows more.
bool differInSizeAlone(char32_t a, char32_t b) {
  const UChar32 folded = u_foldCase(static_cast<UChar32>(a), U_FOLD_CASE_DEFAULT);
  return folded == u_foldCase(static_cast<UChar32>(b), U_FOLD_CASE_DEFAULT) &&
         std::u32string_view(U"abdefghlmnqrt").find(static_cast<char32_t>(folded)) ==
             std::u32string_view::npos;
}

bool isBracket(char32_t c) { return std::u32string_view(U"()[]{}").find(c) != std::u32string_view::npos; }

constexpr double surely = 98;  // Confidence of the engine.

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

/// The characters of the same word on both sides; none where there is none.
struct Neighbours {
  char32_t before = Classification::noCharacter;
  char32_t after = Classification::noCharacter;
  bool isBeforeTallDigit = false;  // Of a capital: the digit is clearly higher.
};

/// Whether a letter of which the engine is sure would become a capital or no capital, or one amid small
/// letters or the other way round, which words seldom have.
bool breaksCase(char32_t read, char32_t seen, bool isSure, const Neighbours& beside) {
  const auto isUpper = [](char32_t c) { return u_isupper(static_cast<UChar32>(c)); };
  const auto isLower = [](char32_t c) { return u_islower(static_cast<UChar32>(c)); };
  if (u_tolower(static_cast<UChar32>(read)) != u_tolower(static_cast<UChar32>(seen))) return false;
  return isSure || (isUpper(seen) ? isLower(beside.before) : isUpper(beside.before) && isUpper(beside.after));
}

/// What the symbol becomes by its shape.
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

/// 1, l, I, the bar and the exclamation mark are little more than one stroke: what is beside it says which it
/// may be, and the shape which of these it is.
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
    // An acronym; behind one capital it may be a short name.
    if (shape.of(U'I') >= (capitalsBefore > 1 ? possible : rarely)) become('I');
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

/// Whether what is beside a zero speaks for an O: IO, $^O, O_RDONLY, OSError. 0xFF, 0.5 and 0UL are numbers.
bool mayBeO(const Neighbours& beside) {
  const auto isOneOf = [](std::u32string_view characters, char32_t c) {
    return characters.find(c) != std::u32string_view::npos;
  };
  if (isDigit(beside.before) || isDigit(beside.after)) return false;
  const bool isBeforeCapital =
      u_isupper(static_cast<UChar32>(beside.after)) && !isOneOf(U"ABCDEFLUX", beside.after);
  return isBeforeCapital || isOneOf(U"I^", beside.before) ||
         (beside.after == U'_' && !isLetter(beside.before) && beside.before != U'_');
}

/// A zero is an O amid capitals, unless it is more like a zero than an O ever is, with a dot or a stroke, or
/// the capitals are hexadecimal digits. Where characters have one width, zeros mostly have them.
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

/// Shares the ink of a cluster among symbols that touch.
void divide(const PixelBox& box, std::vector<Symbol>& symbols, const Match& match) {
  const auto count = static_cast<int>(match.symbolCount);
  for (int i = 0; i < count; ++i) {
    const auto edge = [&](int k) { return box.left + (box.right - box.left + 1) * k / count; };
    symbols[match.firstSymbol + static_cast<std::size_t>(i)].box = {edge(i), box.top, edge(i + 1) - 1,
                                                                    box.bottom};
  }
  symbols[match.firstSymbol].isFirstOfInk = true;
  symbols[match.firstSymbol + match.symbolCount - 1].isLastOfInk = true;
}

/// Whether a symbol is an apostrophe within a word, which is easily taken for a part of the letter beside it.
bool isApostrophe(const std::vector<Symbol>& symbols, std::size_t i) {
  const bool isOne = symbols[i].text == "'" || symbols[i].text == "’";
  return isOne && i + 1 < symbols.size() && !symbols[i + 1].spaceBefore &&
         isLetter(onlyCodePoint(symbols[i + 1].text));
}

/// Which of the symbols that share a cluster is the only one in it: the engine now and then reads one twice,
/// once as a capital or as another sign, and isn't quite sure of that. As many as there are where it may be
/// several.
std::size_t onlyOne(const std::vector<Symbol>& symbols, const Match& match, LineShapes& shapes) {
  constexpr float sure = 0.95F;
  constexpr double unsure = 97;
  std::size_t only = match.symbolCount;
  const Classification& shape = shapes.classification(match.firstCluster);
  if (symbols[match.firstSymbol].text == "." && shapes.beginsWithPoint(match.firstCluster)) return only;
  if (shape.bestProbability() < sure) return only;
  for (std::size_t i = 0; i < match.symbolCount; ++i) {
    const Symbol& symbol = symbols[match.firstSymbol + i];
    const char32_t character = onlyCodePoint(symbol.text);
    if (only == match.symbolCount && character == shape.best())
      only = i;
    else if (symbol.confidence >= unsure || isApostrophe(symbols, match.firstSymbol + i))
      return match.symbolCount;
  }
  return only;
}

/// Whether a cluster that was read as several signs surely is one, and none of them.
bool isOtherSign(const std::vector<Symbol>& symbols, const Match& match, const Classification& shape,
                 const PixelBox& box) {
  constexpr float sure = 0.98F;
  const bool isSlender = 20 * (box.right - box.left + 1) <= 17 * (box.bottom - box.top + 1);
  const auto first = symbols.begin() + static_cast<std::ptrdiff_t>(match.firstSymbol);
  return isSlender && isSurelySign(shape) && shape.bestProbability() >= sure &&
         std::none_of(first, first + static_cast<std::ptrdiff_t>(match.symbolCount),
                      [&](const Symbol& symbol) {
                        const char32_t character = onlyCodePoint(symbol.text);
                        return isLetter(character) || character == shape.best();
                      });
}

/// Whether there is nothing for which there seems to be no ink. Between letters that touch it is hard to tell
/// what is whose, but where each has its cell.
bool isImagined(const Symbol& symbol, const TextLine& line) {
  constexpr double sure = 97;
  const char32_t character = onlyCodePoint(symbol.text);
  return line.cells || (symbol.confidence < sure && !isLetter(character) && !isDigit(character));
}

/// Whether a point is one of three that share a place, some of which touch.
bool isOfEllipsis(const std::vector<Symbol>& symbols, const std::vector<Match>& matches, std::size_t m,
                  const LineShapes& shapes) {
  const auto isPoint = [&](std::size_t i) {
    return matches[i].symbolCount == 1 && symbols[matches[i].firstSymbol].text == ".";
  };
  if (!shapes.line().cells || !isPoint(m)) return false;
  std::size_t first = m;
  std::size_t end = m + 1;
  while (first > 0 && isPoint(first - 1)) --first;
  while (end < matches.size() && isPoint(end)) ++end;
  std::optional<PixelBox> all;
  for (std::size_t i = first; i < end; ++i) {
    if (matches[i].clusterCount == 0) continue;
    const PixelBox box = shapes.box(matches[i].firstCluster, matches[i].clusterCount);
    if (!all) all = box;
    all->right = box.right;
  }
  return end - first == 3 && all && all->width() <= 1.2 * shapes.line().cells->pitch;
}

bool isLikely(const Symbol& symbol, const Classification& shape) {
  constexpr float likely = 0.15F;
  constexpr double sure = 90;
  const char32_t character = onlyCodePoint(symbol.text);
  // Of letters of other scripts the classifier knows nothing.
  return shape.knows(character) ? shape.of(character) >= likely : symbol.confidence >= sure;
}

/// Whether a sign that was read just where a cluster stands surely is another one.
bool isSurelyOther(const Symbol& symbol, const PixelBox& box, const Classification& shape) {
  constexpr float sure = 0.99F;
  constexpr float hardly = 0.01F;
  const int middle = (symbol.box.left + symbol.box.right) / 2;
  const char32_t read = onlyCodePoint(symbol.text);
  return middle >= box.left && middle <= box.right && !isLetter(read) && !isDigit(read) &&
         isSurelySign(shape) && shape.bestProbability() >= sure && shape.of(read) <= hardly;
}

/// Whether most of a cluster stands in the columns of ink that was read before it.
bool liesBelow(const LineShapes& shapes, std::size_t cluster, const Match& before) {
  if (before.clusterCount == 0 || before.symbolCount == 0) return false;
  const PixelBox& box = shapes.clusters()[cluster].box;
  const int shared = shapes.box(before.firstCluster, before.clusterCount).right - box.left + 1;
  return 2 * shared > box.width();
}

/// How many capitals end what was read so far, side by side.
std::size_t capitalsAtEnd(const std::vector<Symbol>& symbols) {
  std::size_t count = 0;
  for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol) {
    if (!u_isupper(static_cast<UChar32>(onlyCodePoint(symbol->text)))) break;
    ++count;
    if (symbol->spaceBefore) break;
  }
  return count;
}

bool mayBeOne(const Symbol& symbol) {
  return std::u32string_view(U"il1I").find(onlyCodePoint(symbol.text)) != std::u32string_view::npos;
}

/// Whether ones side by side, as in F11, were read as one letter.
bool areOnes(const std::vector<Symbol>& symbols, const Match& match, LineShapes& shapes) {
  constexpr float sure = 0.9F;
  if (match.clusterCount < 2 || match.symbolCount != 1 || !mayBeOne(symbols[match.firstSymbol])) return false;
  for (std::size_t i = 0; i < match.clusterCount; ++i)
    if (shapes.classification(match.firstCluster + i).of(U'1') < sure) return false;
  return true;
}

/// Takes the space before the next symbol to a cluster that wasn't read and is nearer to it than to what is
/// before: of " --" the engine now and then reads " -", which may be the second one.
bool takesSpace(std::vector<Symbol>& symbols, const std::vector<Match>& matches, std::size_t m,
                const LineShapes& shapes) {
  if (m == 0 || m + 1 == matches.size() || matches[m - 1].clusterCount == 0 ||
      matches[m + 1].clusterCount == 0 || matches[m + 1].symbolCount == 0)
    return false;
  bool& isSpace = symbols[matches[m + 1].firstSymbol].spaceBefore;
  const auto boxOf = [&](const Match& match) { return shapes.box(match.firstCluster, match.clusterCount); };
  const PixelBox box = boxOf(matches[m]);
  const bool isNearer = box.left - boxOf(matches[m - 1]).right > boxOf(matches[m + 1]).left - box.right;
  return isNearer && std::exchange(isSpace, false);
}

bool isOneToOne(const Match& match) { return match.clusterCount > 0 && match.symbolCount == 1; }

/// The neighbours of the first symbol of a match. What is before it has been corrected already.
Neighbours neighboursOf(const std::vector<Symbol>& symbols, const std::vector<Match>& matches, std::size_t m,
                        const std::vector<Symbol>& corrected, const LineShapes& shapes) {
  const Match& match = matches[m];
  Neighbours beside;
  if (!corrected.empty() && !symbols[match.firstSymbol].spaceBefore)
    beside.before = onlyCodePoint(corrected.back().text);
  // Symbols between two matches have been dropped.
  const std::size_t next = m + 1 < matches.size() ? matches[m + 1].firstSymbol : symbols.size();
  if (next == symbols.size() || symbols[next].spaceBefore) return beside;
  beside.after = onlyCodePoint(symbols[next].text);
  const char32_t read = onlyCodePoint(symbols[match.firstSymbol].text);
  if (isOneToOne(match) && u_isupper(static_cast<UChar32>(read)) && isDigit(beside.after) &&
      isOneToOne(matches[m + 1])) {
    const PixelBox it = shapes.box(match.firstCluster, match.clusterCount);
    const PixelBox digit = shapes.box(matches[m + 1].firstCluster, matches[m + 1].clusterCount);
    // A raised digit is no such.
    beside.isBeforeTallDigit = 6 * (it.top - digit.top) >= digit.height() &&
                               std::abs(it.bottom - digit.bottom) <= 1 + digit.height() / 8;
  }
  return beside;
}

}  // namespace

void correctByShape(std::vector<Symbol>& symbols, LineShapes& shapes) {
  std::vector<Match> matches = align(shapes, symbols);
  // Beside letters that touch there may be a slip of the alignment.
  const auto isSteady = [&](std::size_t i) {
    const auto isPlain = [](const Match& match) { return match.clusterCount > 0 && match.symbolCount < 2; };
    return (i == 0 || isPlain(matches[i - 1])) && (i + 1 == matches.size() || isPlain(matches[i + 1]));
  };
  std::vector<bool> isEllipsis;
  for (std::size_t m = 0; m < matches.size(); ++m)
    isEllipsis.push_back(isOfEllipsis(symbols, matches, m, shapes));
  std::vector<Symbol> corrected;
  for (std::size_t m = 0; m < matches.size(); ++m) {
    Match& match = matches[m];
    // Of F11 the engine read F, i and l: the i was put with the ink of the F, both strokes with the l.
    if (match.symbolCount == 2 && mayBeOne(symbols[match.firstSymbol + 1]) && m + 1 < matches.size() &&
        areOnes(symbols, matches[m + 1], shapes))
      match.symbolCount = 1;
    if (match.clusterCount == 1 && match.symbolCount > 1) {
      const Classification& shape = shapes.classification(match.firstCluster);
      std::size_t only = onlyOne(symbols, match, shapes);
      if (only == match.symbolCount && isOtherSign(symbols, match, shape, shapes.box(match.firstCluster))) {
        only = 0;
        symbols[match.firstSymbol].text = utf8Of(shape.best());
      }
      if (only < match.symbolCount) {
        symbols[match.firstSymbol + only].spaceBefore = symbols[match.firstSymbol].spaceBefore;
        match.firstSymbol += only;
        match.symbolCount = 1;
      }
    }
    if (areOnes(symbols, match, shapes)) {
      for (std::size_t i = 0; i < match.clusterCount; ++i)
        corrected.push_back({"1", i == 0 && symbols[match.firstSymbol].spaceBefore,
                             shapes.box(match.firstCluster + i), surely, true, true});
      continue;
    }
    if (match.symbolCount == 0) {
      // The stem of an i whose dot touches the f before it stands below both.
      const bool isPoint = shapes.isPoint(match.firstCluster);
      const bool isBelowArm =
          isPoint && !corrected.empty() && reachesOverPoint(onlyCodePoint(corrected.back().text));
      if (!isBelowArm && m > 0 && liesBelow(shapes, match.firstCluster, matches[m - 1])) continue;
      const Classification& shape = shapes.classification(match.firstCluster);
      const bool isSign = isSurelySign(shape);
      if (isSign || isPoint)
        corrected.push_back({isSign ? utf8Of(shape.best()) : ".", takesSpace(symbols, matches, m, shapes),
                             shapes.box(match.firstCluster), 50, true, isSign});
      continue;
    }
    if (match.clusterCount == 0 && isImagined(symbols[match.firstSymbol], shapes.line()) && !isEllipsis[m])
      continue;
    Symbol& first = symbols[match.firstSymbol];
    first.hasOwnInk = isOneToOne(match);
    const bool isOther =
        first.hasOwnInk && isSurelyOther(first, shapes.box(match.firstCluster, match.clusterCount),
                                         shapes.classification(match.firstCluster, match.clusterCount));
    if (match.clusterCount > 0) divide(shapes.box(match.firstCluster, match.clusterCount), symbols, match);
    constexpr double mild = 90;
    const Neighbours beside = neighboursOf(symbols, matches, m, corrected, shapes);
    if (first.hasOwnInk) {
      const Classification& shape = shapes.classification(match.firstCluster, match.clusterCount);
      // A letter is hard to tell with something of the next in its picture.
      const bool isBlurred =
          shapes.isCut(match.firstCluster) && isLetter(onlyCodePoint(first.text)) &&
          (shape.bestProbability() < 0.999F || shape.of(onlyCodePoint(first.text)) > 1e-4F);
      if (!isBlurred && (first.confidence < mild || isOther || beside.isBeforeTallDigit || isSteady(m)))
        correctSymbol(first, shape, beside, shapes.line().cells.has_value());
      correctStroke(first, shape, beside, first.spaceBefore ? 0 : capitalsAtEnd(corrected), shapes.line());
      correctZero(first, shape, beside, shapes.line());
    }
    first.isLikely =
        first.hasOwnInk && isLikely(first, shapes.classification(match.firstCluster, match.clusterCount));
    for (std::size_t i = 0; i < match.symbolCount; ++i)
      corrected.push_back(std::move(symbols[match.firstSymbol + i]));
  }
  symbols = std::move(corrected);
}

std::size_t likelyCount(const std::vector<Symbol>& symbols) {
  return static_cast<std::size_t>(
      std::count_if(symbols.begin(), symbols.end(), [](const Symbol& symbol) { return symbol.isLikely; }));
}

}  // namespace lumiscan::desktop
