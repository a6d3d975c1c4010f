#include "platform/linux/recognition/Consensus.h"

#include <algorithm>
#include <compare>
#include <cstdlib>
#include <map>
#include <string>

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
};

/// Symbols whose ink is the same, pixel by pixel.
using Twins = std::vector<Occurrence>;

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
    if (draft.isWide || !draft.line->cells) continue;
    for (Symbol& symbol : draft.symbols) {
      if (!symbol.hasOwnInk) continue;
      const PixelBox& box = symbol.box;
      std::vector<Twins>& alike =
          found[{box.right - box.left, box.bottom - box.top, box.top - draft.line->baseline}];
      const auto home = std::find_if(alike.begin(), alike.end(), [&](const Twins& twins) {
        return haveSameInk(twins.front().symbol->box, box, ink);
      });
      (home == alike.end() ? alike.emplace_back() : *home).push_back({&symbol, draft.line});
    }
  }
  std::vector<Twins> all;
  for (auto& [extent, alike] : found)
    for (Twins& twins : alike) all.push_back(std::move(twins));
  return all;
}

void agree(const Twins& twins, const GreyBitmap& ink) {
  constexpr std::size_t fewest = 3;
  std::map<std::string, double> votes;
  for (const Occurrence& each : twins) votes[each.symbol->text] += each.symbol->confidence / 100;
  if (votes.size() < 2 || twins.size() < fewest) return;
  const PixelBox& box = twins.front().symbol->box;
  const Classification shape =
      GlyphClassifier::shared().classify(shapeOf(ink, Cluster{{Glyph{box}}, box}, *twins.front().line));
  // The shape has as many votes as all readings together.
  for (auto& [text, count] : votes)
    count += static_cast<double>(twins.size()) * static_cast<double>(shape.of(onlyCodePoint(text)));
  const auto most = std::max_element(votes.begin(), votes.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  constexpr double clear = 2;
  for (const auto& [text, count] : votes)
    if (text != most->first && clear * count > most->second) return;
  for (const Occurrence& each : twins) each.symbol->text = most->first;
}

}  // namespace

void agree(std::vector<LineDraft>& drafts, const GreyBitmap& ink) {
  for (const Twins& twins : twinsIn(drafts, ink)) agree(twins, ink);
}

}  // namespace lumiscan::desktop
