#include "platform/linux/recognition/Consensus.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <compare>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/GlyphClassifier.h"
#include "platform/linux/recognition/GlyphShape.h"

namespace lumiscan::desktop {

namespace {

/// What is the same of symbols of one shape.
struct Extent {
  int width, height;
  int top;  // Below the baseline.
  auto operator<=>(const Extent&) const = default;
};

struct Occurrence {
  Symbol* symbol;
  const TextLine* line;
  // Side by side with it, if any.
  char32_t before, after;
};

/// Symbols whose ink is the same, pixel by pixel.
using Twins = std::vector<Occurrence>;

bool isOfWords(char32_t c) { return u_isalnum(static_cast<UChar32>(c)); }

Occurrence occurrenceOf(std::vector<Symbol>& symbols, std::size_t i, const TextLine& line) {
  const auto neighbour = [&](bool isThere, std::size_t at) {
    return isThere ? onlyCodePoint(symbols[at].text) : Classification::noCharacter;
  };
  return {&symbols[i], &line, neighbour(i > 0 && !symbols[i].spaceBefore, i - 1),
          neighbour(i + 1 < symbols.size() && !symbols[i + 1].spaceBefore, i + 1)};
}

/// How much counts what was read. Of a stroke without letters beside it, as in -l, the engine can only guess
/// what it is.
double weightOf(const Occurrence& each) {
  constexpr double guess = 0.25;
  const bool isStroke =
      std::u32string_view(U"1lI|i").find(onlyCodePoint(each.symbol->text)) != std::u32string_view::npos;
  return isStroke && !isOfWords(each.before) && !isOfWords(each.after) ? guess : 1;
}

bool haveSameInk(const PixelBox& a, const PixelBox& b, const GreyBitmap& ink) {
  constexpr int most = 48;  // Something of their neighbours may reach into the box.
  for (int y = 0; y <= a.bottom - a.top; ++y)
    for (int x = 0; x <= a.right - a.left; ++x)
      if (std::abs(ink.at(a.left + x, a.top + y) - ink.at(b.left + x, b.top + y)) > most) return false;
  return true;
}

std::vector<Twins> twinsIn(std::vector<LineDraft>& drafts, const GreyBitmap& ink) {
  std::map<Extent, std::vector<Twins>> found;
  for (LineDraft& draft : drafts) {
    if (draft.isWide) continue;
    for (std::size_t i = 0; i < draft.symbols.size(); ++i) {
      Symbol& symbol = draft.symbols[i];
      // Elsewhere several letters may have one shape.
      const bool mayAgree = draft.line->cells || symbol.text == "1" || symbol.text == "l";
      if (!symbol.hasOwnInk || !mayAgree) continue;
      const PixelBox& box = symbol.box;
      std::vector<Twins>& alike =
          found[{box.right - box.left, box.bottom - box.top, box.top - draft.line->baseline}];
      const auto home = std::find_if(alike.begin(), alike.end(), [&](const Twins& twins) {
        return haveSameInk(twins.front().symbol->box, box, ink);
      });
      (home == alike.end() ? alike.emplace_back() : *home)
          .push_back(occurrenceOf(draft.symbols, i, *draft.line));
    }
  }
  std::vector<Twins> all;
  for (auto& [extent, alike] : found)
    for (Twins& twins : alike) all.push_back(std::move(twins));
  return all;
}

Classification shapeOfAll(const Twins& twins, const GreyBitmap& ink) {
  const PixelBox& box = twins.front().symbol->box;
  return GlyphClassifier::shared().classify(shapeOf(ink, Cluster{{Glyph{box}}, box}, *twins.front().line));
}

/// Whether a zero there may be an O: beside a letter, but for those of hexadecimal numbers.
bool mayBeO(const Occurrence& each) {
  const auto isLetter = [](char32_t c) {
    return u_isalpha(static_cast<UChar32>(c)) &&
           std::u32string_view(U"abcdefx").find(c) == std::u32string_view::npos;
  };
  return isLetter(each.before) || isLetter(each.after);
}

/// Where zeros have a dot or a stroke, which they show somewhere, others beside letters are an O.
void tellZerosFromO(const std::vector<Twins>& all, const GreyBitmap& ink) {
  constexpr float leastOfMarked = 0.6F, mostOfO = 0.4F;  // Of a zero's probability less that of an O.
  std::vector<std::pair<const Twins*, float>> found;
  for (const Twins& twins : all) {
    const Occurrence& first = twins.front();
    if (!first.line->cells || (first.symbol->text != "0" && first.symbol->text != "O")) continue;
    const Classification shape = shapeOfAll(twins, ink);
    found.emplace_back(&twins, shape.of(U'0') - shape.of(U'O'));
  }
  const bool areMarked =
      std::any_of(found.begin(), found.end(), [](const auto& each) { return each.second >= leastOfMarked; });
  if (!areMarked) return;
  for (const auto& [twins, zero] : found)
    for (const Occurrence& each : *twins)
      if (zero >= leastOfMarked)
        each.symbol->text.assign(1, '0');
      else if (zero < mostOfO && mayBeO(each))
        each.symbol->text.assign(1, 'O');
}

void agree(const Twins& twins, const GreyBitmap& ink) {
  const bool hasGuess =
      std::any_of(twins.begin(), twins.end(), [](const Occurrence& each) { return weightOf(each) < 1; });
  const std::size_t fewest = hasGuess ? 2 : 3;
  std::map<std::string, double> votes;
  for (const Occurrence& each : twins)
    votes[each.symbol->text] += weightOf(each) * each.symbol->confidence / 100;
  if (votes.size() < 2 || twins.size() < fewest) return;
  const Classification shape = shapeOfAll(twins, ink);
  // The shape has as many votes as all readings together.
  for (auto& [text, count] : votes)
    count += static_cast<double>(twins.size()) * static_cast<double>(shape.of(onlyCodePoint(text)));
  const auto most = std::max_element(votes.begin(), votes.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  constexpr double clear = 2;
  for (const auto& [text, count] : votes)
    if (text != most->first && clear * count > most->second) return;
  for (const Occurrence& each : twins)
    if (each.line->cells || weightOf(each) < 1 || most->first == "1") each.symbol->text = most->first;
}

}  // namespace

void agree(std::vector<LineDraft>& drafts, const GreyBitmap& ink) {
  const std::vector<Twins> all = twinsIn(drafts, ink);
  for (const Twins& twins : all) agree(twins, ink);
  tellZerosFromO(all, ink);
}

}  // namespace lumiscan::desktop
