#include "platform/linux/recognition/Superscripts.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

/// Higher than quotation marks, and raised by more than letters with round feet.
bool isRaised(const PixelBox& box, const TextLine& line) {
  return 4 * box.height() >= 3 * line.letterHeight && box.width() <= box.height() &&
         10 * (line.baseline - 1 - box.bottom) >= 4 * line.letterHeight;
}

bool isMark(char32_t character) {
  constexpr std::u32string_view marks = U"'\"`*?!>^~‘’“”®©°";
  return marks.find(character) != std::u32string_view::npos;
}

/// The digit that a cluster is if it stands on a line of its own size.
char32_t digitOf(const Cluster& cluster, const GreyBitmap& ink) {
  constexpr double lettersToDigits = 0.73;
  constexpr float least = 0.8F;
  TextLine line;
  line.letterHeight = std::max(1, static_cast<int>(std::lround(lettersToDigits * cluster.box.height())));
  line.baseline = cluster.box.bottom + 1;
  const Classification shape = GlyphClassifier::shared().classify(shapeOf(ink, cluster, line));
  const bool isDigit = shape.best() >= U'0' && shape.best() <= U'9' && shape.bestProbability() >= least;
  return isDigit ? shape.best() : Classification::noCharacter;
}

}  // namespace

void correctSuperscripts(std::vector<Symbol>& symbols, const LineShapes& shapes, const GreyBitmap& ink) {
  for (const Cluster& cluster : shapes.clusters()) {
    if (!isRaised(cluster.box, shapes.line())) continue;
    const auto isWithin = [&](const Symbol& symbol) {
      const int middle = (symbol.box.left + symbol.box.right) / 2;
      return middle >= cluster.box.left && middle <= cluster.box.right;
    };
    const auto symbol = std::find_if(symbols.begin(), symbols.end(), isWithin);
    if (symbol == symbols.end() || !isMark(onlyCodePoint(symbol->text))) continue;
    const char32_t digit = digitOf(cluster, ink);
    if (digit == Classification::noCharacter) continue;
    symbol->text.assign(1, static_cast<char>(digit));
    symbol->box = cluster.box;
    symbol->hasOwnInk = symbol->isLikely = true;
  }
}

}  // namespace lumiscan::desktop
