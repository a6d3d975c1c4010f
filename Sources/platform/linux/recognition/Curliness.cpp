#include "platform/linux/recognition/Curliness.h"

#include <algorithm>
#include <cmath>

#include "platform/linux/recognition/QuotationPairs.h"

namespace lumiscan::desktop {

namespace {

/// By how much the logarithm of the odds rises with what speaks for a curly mark.
struct Weights {
  double engine;        // It read a curly one; it falls by as much if not.
  double lean;          // A height of the mark.
  double openingBelow;  // The logarithm of how much heavier the lower half of an opening mark is,
  double closingAbove;  // or the upper half of another one.
  double shape;         // The logarithm of the odds by the shape alone.
  double tiny;          // It is of less than five pixels in height.
  double bias;
};

// Fitted by logistic regression to marks in 22 fonts of 10 to 56 pixels, half of them curly.
constexpr Weights ofApostrophes{0.5, 22, 0, 0.5, 0.95, -0.1, 0.3};
constexpr Weights ofDoubleMarks{1.3, 25, 5, 2, 0.8, -0.8, 0.1};
constexpr Weights ofTouchingStrokes{1.15, 26, 5, 0, 0, -0.7, -1.3};

constexpr double surest = 4;  // What one mark can say.

bool isReadAsCurly(const Symbol& symbol) { return isQuote(symbol.text) && symbol.text.size() > 1; }

/// The mean over the strokes that look like a mark at all.
double oddsOfShape(const QuoteMark& mark, char32_t curly, LineShapes& shapes) {
  constexpr double least = 0.02;
  constexpr double anyMark = 0.1;
  double sum = 0;
  int strokes = 0;
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const PixelBox box = shapes.box(i);
    if (box.left < mark.box.left || box.right > mark.box.right) continue;
    const Classification& shape = shapes.classification(i);
    if (shape.of(U'\'') + shape.of(U'’') + shape.of(U'‘') < anyMark) continue;
    sum += std::log((shape.of(curly) + least) / (shape.of(U'\'') + least));
    ++strokes;
  }
  return strokes == 0 ? 0 : sum / strokes;
}

}  // namespace

double curliness(const QuoteMark& mark, const Symbol& symbol, bool opens, LineShapes& shapes) {
  constexpr double mostLean = 0.25;  // More than this tells no more.
  const Weights& weights = mark.touching       ? ofTouchingStrokes
                           : mark.strokes == 1 ? ofApostrophes
                                               : ofDoubleMarks;
  const double below = mark.weight > 0 ? std::clamp(std::log(mark.weight), -1.0, 1.0) : 0;
  double odds = weights.bias + (isReadAsCurly(symbol) ? weights.engine : -weights.engine);
  odds += weights.lean * std::min(std::abs(mark.lean), mostLean);
  odds += opens ? weights.openingBelow * below : -weights.closingAbove * below;
  odds += weights.shape * oddsOfShape(mark, opens ? U'‘' : U'’', shapes);
  if (mark.box.height() < 5) odds += weights.tiny;
  return std::clamp(odds, -surest, surest);
}

double curlinessAsRead(const Symbol& symbol) {
  return isReadAsCurly(symbol) ? ofDoubleMarks.engine : -ofDoubleMarks.engine;
}

bool areCurly(double own, double others) {
  // The marks of a page err alike, so what they say doesn't add up in full; and a page may quote code amid
  // text. Straight marks are what keyboards write.
  constexpr double share = 0.8;
  constexpr double usuallyStraight = 1;
  return own + std::clamp(share * others - usuallyStraight, -surest, surest) > 0;
}

}  // namespace lumiscan::desktop
