#include "platform/linux/recognition/BarTracing.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

namespace lumiscan::desktop {

namespace {

constexpr int leastContrast = 16;  // Of bars; blurred ends are faint.

struct BarLine {
  double x, y;    // Where it starts,
  double dx, dy;  // its direction, of length 1,
  int length;     // and its length in pixels.
};

BarLine lineBetween(double startX, double startY, double endX, double endY) {
  const double length = std::max(1.0, std::hypot(endX - startX, endY - startY));
  return {startX, startY, (endX - startX) / length, (endY - startY) / length, static_cast<int>(length) + 1};
}

/// A line across the bars, `across` pixels from the one on which the code was read and moved by `shift`
/// along itself.
struct Trace {
  double shift, across;
};

std::pair<int, int> pixelOf(const BarLine& line, double along, double across) {
  return {static_cast<int>(std::lround(line.x + along * line.dx - across * line.dy)),
          static_cast<int>(std::lround(line.y + along * line.dy + across * line.dx))};
}

/// The dark and light along a line; empty where there is no contrast.
using Pattern = std::vector<bool>;

Pattern patternOn(const GreyBitmap& bitmap, const BarLine& line, const Trace& trace) {
  std::vector<std::uint8_t> values(static_cast<std::size_t>(line.length), 255);
  for (int i = 0; i < line.length; ++i) {
    const auto [x, y] = pixelOf(line, i + trace.shift, trace.across);
    if (bitmap.contains(x, y)) values[static_cast<std::size_t>(i)] = bitmap.at(x, y);
  }
  const auto [darkest, lightest] = std::minmax_element(values.begin(), values.end());
  if (*lightest - *darkest < leastContrast) return {};
  const int threshold = (*darkest + *lightest) / 2;
  Pattern pattern(values.size());
  std::transform(values.begin(), values.end(), pattern.begin(),
                 [&](std::uint8_t value) { return value > threshold; });
  return pattern;
}

/// The share of the pixels that are dark in both or light in both.
double likeness(const Pattern& a, const Pattern& b) {
  if (b.empty()) return 0;
  std::size_t same = 0;
  for (std::size_t i = 0; i < a.size(); ++i) same += a[i] == b[i];
  return static_cast<double>(same) / static_cast<double>(a.size());
}

/// Follows the bars to one side of the line, as far as they look as they do on it.
void follow(const GreyBitmap& bitmap, const BarLine& line, const Pattern& pattern, int side,
            std::vector<Trace>& traces) {
  constexpr double alike = 0.8;
  constexpr int longestGap = 3;  // A line drawn through the bars doesn't end them.
  double shift = 0;              // Bars may lean.
  int gap = 0;
  for (int step = 1; step < bitmap.width + bitmap.height && gap <= longestGap; ++step) {
    const double across = side * step;
    double best = 0;
    double bestShift = shift;
    for (const double candidate : {shift, shift - 1, shift + 1}) {
      const double value = likeness(pattern, patternOn(bitmap, line, {candidate, across}));
      if (value > best) std::tie(best, bestShift) = std::pair(value, candidate);
    }
    gap = best < alike ? gap + 1 : 0;
    if (gap > 0) continue;
    shift = bestShift;
    traces.push_back({shift, across});
  }
}

}  // namespace

Bars paintOverBars(GreyBitmap& bitmap, const ZXing::Position& position, std::uint8_t paint) {
  // A code may have been read on two lines, the upper and the lower one of its box, and be painted over
  // already between them; two equal codes may even have been taken for one.
  const BarLine candidates[] = {
      lineBetween((position[0].x + position[3].x) / 2.0, (position[0].y + position[3].y) / 2.0,
                  (position[1].x + position[2].x) / 2.0, (position[1].y + position[2].y) / 2.0),
      lineBetween(position[0].x, position[0].y, position[1].x, position[1].y),
      lineBetween(position[3].x, position[3].y, position[2].x, position[2].y)};
  const auto hasBars = [&](const BarLine& line) { return !patternOn(bitmap, line, {0, 0}).empty(); };
  const BarLine* found = std::find_if(std::begin(candidates), std::end(candidates), hasBars);
  const BarLine& line = found == std::end(candidates) ? candidates[0] : *found;
  std::vector<Trace> traces{{0, 0}};
  if (const Pattern pattern = patternOn(bitmap, line, {0, 0}); !pattern.empty())
    for (const int side : {-1, 1}) follow(bitmap, line, pattern, side, traces);

  PixelBox box{bitmap.width, bitmap.height, -1, -1};
  constexpr int beyondEnds = 2;
  for (const Trace& trace : traces)
    for (int i = -beyondEnds; i < line.length + beyondEnds; ++i) {
      const auto [px, py] = pixelOf(line, i + trace.shift, trace.across);
      // The neighbours too: lines that lean leave pixels out between them.
      for (const auto& [x, y] : {std::pair(px, py), std::pair(px + 1, py), std::pair(px, py + 1)})
        if (bitmap.contains(x, y)) bitmap.at(x, y) = paint;
      box = {std::min(box.left, px), std::min(box.top, py), std::max(box.right, px),
             std::max(box.bottom, py)};
    }
  return {box, static_cast<int>(traces.size())};
}

}  // namespace lumiscan::desktop
