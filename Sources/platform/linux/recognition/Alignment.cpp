#include "platform/linux/recognition/Alignment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "platform/linux/recognition/CodePoints.h"
#include "platform/linux/recognition/QuotationPairs.h"

namespace lumiscan::desktop {

namespace {

// Costs of a match; about the logarithm of how unlikely it is.
constexpr double inkWithoutSymbol = 3;
constexpr double symbolWithoutInk = 3;
constexpr double touching = 0.8;  // For each symbol but one of a cluster.
constexpr double inPieces = 0.5;  // For each cluster but one of a symbol.
// Between where a symbol was seen and where its ink is, for each height of a letter. In cells the engine's
// boxes are more exact.
constexpr double perLetterHeight = 0.5;
constexpr double perLetterHeightInCells = 1;
constexpr double farthest = 3;
constexpr double unknownShape = 0.7;
constexpr std::size_t mostTouching = 6;
constexpr std::size_t mostPieces = 3;

class Aligner {
 public:
  Aligner(LineShapes& shapes, const std::vector<Symbol>& symbols)
      : shapes_(shapes),
        symbols_(symbols),
        clusterCount_(shapes.clusters().size()),
        letterHeight_(std::max(1, shapes.line().letterHeight)),
        steps_((clusterCount_ + 1) * (symbols.size() + 1)) {}

  std::vector<Match> align() {
    at(0, 0).cost = 0;
    for (std::size_t c = 0; c <= clusterCount_; ++c)
      for (std::size_t s = 0; s <= symbols_.size(); ++s)
        if (at(c, s).cost < impossible) extend(c, s);
    std::vector<Match> matches;
    std::size_t c = clusterCount_;
    std::size_t s = symbols_.size();
    while (c > 0 || s > 0) {
      const Step& step = at(c, s);
      c -= step.clusters;
      s -= step.symbols;
      matches.push_back({c, step.clusters, s, step.symbols});
    }
    std::reverse(matches.begin(), matches.end());
    return matches;
  }

 private:
  static constexpr double impossible = std::numeric_limits<double>::infinity();

  struct Step {
    double cost = impossible;
    std::size_t clusters = 0, symbols = 0;  // Of the last match.
  };

  Step& at(std::size_t cluster, std::size_t symbol) {
    return steps_[cluster * (symbols_.size() + 1) + symbol];
  }

  /// Tries every match that begins with this cluster and this symbol.
  void extend(std::size_t c, std::size_t s) {
    const double cost = at(c, s).cost;
    const auto offer = [&](std::size_t clusters, std::size_t symbols, double more) {
      Step& next = at(c + clusters, s + symbols);
      if (cost + more < next.cost) next = {cost + more, clusters, symbols};
    };
    const bool hasCluster = c < clusterCount_;
    const bool hasSymbol = s < symbols_.size();
    if (hasCluster) offer(1, 0, inkWithoutSymbol);
    if (hasSymbol) offer(0, 1, symbolWithoutInk);
    if (!hasCluster || !hasSymbol || distance(c, 1, s, 1) > farthest + 2) return;
    offer(1, 1, pairCost(c, 1, s));
    for (std::size_t n = 2; n <= mostPieces && c + n <= clusterCount_ && mayBeOne(c, n, s); ++n)
      if (!isOneBesideSign(c, n, s)) offer(n, 1, pairCost(c, n, s) + inPieces * static_cast<double>(n - 1));
    for (std::size_t n = 2; n <= mostTouching && s + n <= symbols_.size(); ++n) {
      if (symbols_[s + n - 1].spaceBefore) break;
      offer(1, n, touchingCost(c, s, n));
    }
  }

  /// Whether the last of the clusters may be a piece of the symbol with the others.
  bool mayBeOne(std::size_t c, std::size_t count, std::size_t s) const {
    // The engine now and then reads three points as one, and passes over one beside a quotation mark.
    const bool standsAlone = symbols_[s].text == "." || isQuote(symbols_[s].text);
    if (standsAlone && shapes_.isPoint(c + count - 1)) return false;
    const auto& clusters = shapes_.clusters();
    const PixelBox& last = clusters[c + count - 1].box;
    return 5 * (last.left - clusters[c + count - 2].box.right) <= 2 * letterHeight_ + 5 &&
           last.right - clusters[c].box.left <= 2 * letterHeight_;
  }

  /// Whether two clusters are the symbol and a sign beside it that was passed over, as the point in 1.7.
  bool isOneBesideSign(std::size_t c, std::size_t count, std::size_t s) {
    const char32_t character = onlyCodePoint(symbols_[s].text);
    const auto isIt = [&](std::size_t i) { return shapes_.classification(i).of(character) >= 0.9F; };
    const auto isSign = [&](std::size_t i) {
      return shapes_.isPoint(i) || isSurelySign(shapes_.classification(i));
    };
    const auto& clusters = shapes_.clusters();
    if (count != 2) return false;
    // The dot in a zero is no sign beside it; a full stop beneath the arm of an r is.
    const PixelBox& first = clusters[c].box;
    const PixelBox& second = clusters[c + 1].box;
    const bool isBelowArm =
        reachesOverPoint(character) && shapes_.isPoint(c + 1) && 2 * second.left > first.left + first.right;
    if (second.left <= first.right && !isBelowArm) return false;
    return (isIt(c) && isSign(c + 1)) || (isIt(c + 1) && isSign(c));
  }

  /// Between the middles, in heights of a letter.
  double distance(std::size_t c, std::size_t clusters, std::size_t s, std::size_t symbols) const {
    const int ink = shapes_.clusters()[c].box.left + shapes_.clusters()[c + clusters - 1].box.right;
    const int seen = symbols_[s].box.left + symbols_[s + symbols - 1].box.right;
    return std::abs(ink - seen) / 2.0 / letterHeight_;
  }

  double placeCost(std::size_t c, std::size_t clusters, std::size_t s, std::size_t symbols) const {
    const double weight = shapes_.line().cells ? perLetterHeightInCells : perLetterHeight;
    return weight * std::min(farthest, distance(c, clusters, s, symbols));
  }

  double pairCost(std::size_t c, std::size_t clusters, std::size_t s) {
    const char32_t character = onlyCodePoint(symbols_[s].text);
    const Classification& shape = shapes_.classification(c, clusters);
    double cost = unknownShape;
    if (shape.knows(character)) {
      constexpr double least = 1e-3;
      cost = -0.3 * std::log(std::max(least, static_cast<double>(shape.of(character))));
    }
    return cost + placeCost(c, clusters, s, 1);
  }

  /// Whether symbols are fi, fl, ff or longer ones, which some fonts make one sign in one cell.
  bool isLigature(std::size_t s, std::size_t count) const {
    for (std::size_t i = 0; i + 1 < count; ++i)
      if (symbols_[s + i].text != "f") return false;
    const std::string& last = symbols_[s + count - 1].text;
    return last == "f" || last == "i" || last == "l";
  }

  double touchingCost(std::size_t c, std::size_t s, std::size_t count) {
    const PixelBox& box = shapes_.clusters()[c].box;
    const auto& cells = shapes_.line().cells;
    if (cells && box.right - box.left + 1 <= 1.2 * cells->pitch && !isLigature(s, count)) return impossible;
    // Even l needs a fourth of its height.
    const double width = static_cast<double>(box.right - box.left + 1) / letterHeight_;
    if (width < 0.3 * static_cast<double>(count)) return impossible;
    const double single = 1 - static_cast<double>(shapes_.classification(c).of(Classification::noCharacter));
    return touching * static_cast<double>(count - 1) * single + 0.3 * single + placeCost(c, 1, s, count);
  }

  LineShapes& shapes_;
  const std::vector<Symbol>& symbols_;
  std::size_t clusterCount_;
  int letterHeight_;
  std::vector<Step> steps_;
};

}  // namespace

bool reachesOverPoint(char32_t letter) {
  return std::u32string_view(U"rfvwyFPTVWY").find(letter) != std::u32string_view::npos;
}

std::vector<Match> align(LineShapes& shapes, const std::vector<Symbol>& symbols) {
  return Aligner(shapes, symbols).align();
}

}  // namespace lumiscan::desktop
