#include "platform/linux/recognition/ShapeCorrections.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/Alignment.h"
#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/SymbolCorrections.h"

namespace lumiscan::desktop {

namespace {

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

/// Of a letter alone the engine may read both forms, since nothing tells how large it is: Cc, WwW. Leaves the
/// capital, which stands alone more often.
void dropOtherForms(std::vector<Symbol>& symbols, const LineShapes& shapes) {
  const auto letterOf = [](const Symbol& symbol) { return static_cast<UChar32>(onlyCodePoint(symbol.text)); };
  const auto isSame = [&](const Symbol& symbol) {
    return u_toupper(letterOf(symbol)) == u_toupper(letterOf(symbols.front()));
  };
  const auto isCapital = [&](const Symbol& symbol) { return u_isupper(letterOf(symbol)); };
  if (shapes.clusters().size() != 1 || !std::all_of(symbols.begin(), symbols.end(), isSame)) return;
  const auto capital = std::find_if(symbols.begin(), symbols.end(), isCapital);
  if (capital == symbols.end() || std::all_of(symbols.begin(), symbols.end(), isCapital)) return;
  Symbol kept = std::move(*capital);
  kept.box = shapes.clusters().front().box;
  kept.spaceBefore = false;
  symbols = {std::move(kept)};
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
  beside.isOption = beside.before == U'-' && (corrected.size() == 1 || corrected.back().spaceBefore);
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
  dropOtherForms(symbols, shapes);
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
