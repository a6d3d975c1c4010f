#include "platform/linux/recognition/Cells.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/LineImage.h"

namespace lumiscan::desktop {

namespace {

/// The middles, along x and doubled, of what may be single letters, from left to right. Marks tell little:
/// some are several strokes, and some stand at one side of their place.
using DoubleMiddles = std::vector<int>;

DoubleMiddles doubleMiddles(const TextLine& line) {
  DoubleMiddles middles;
  for (const Cluster& cluster : clustersOf(line.glyphs)) {
    const int width = cluster.box.right - cluster.box.left + 1;
    const int height = cluster.box.bottom - cluster.box.top + 1;
    if (5 * height >= 3 * line.letterHeight && 4 * width <= 5 * line.letterHeight)
      middles.push_back(cluster.box.left + cluster.box.right);
  }
  return middles;
}

/// The places of a line's letters behind the first one. They are counted from one to the next, so that a
/// pitch that is a little off doesn't add up along the line.
std::vector<double> placesOf(const DoubleMiddles& middles, double pitch) {
  std::vector<double> places(middles.size());
  for (std::size_t i = 1; i < places.size(); ++i)
    places[i] = places[i - 1] + std::round((middles[i] - middles[i - 1]) / 2.0 / pitch);
  return places;
}

double mean(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

/// The cells of this pitch into which the letters fit best. Precondition: there are letters.
Cells cellsOf(const DoubleMiddles& middles, double pitch) {
  const double middle = std::accumulate(middles.begin(), middles.end(), 0.0) / 2.0;
  return {pitch, middle / static_cast<double>(middles.size()) - pitch * mean(placesOf(middles, pitch))};
}

std::size_t lettersNearMiddles(const DoubleMiddles& middles, const Cells& cells) {
  constexpr double near = 0.17;
  return static_cast<std::size_t>(std::count_if(middles.begin(), middles.end(), [&](int doubled) {
    const double place = cells.placeOf(doubled / 2.0);
    return std::abs(place - std::round(place)) <= near;
  }));
}

/// Improves a rough pitch until it fits the letters of all lines best.
double refinedPitch(const std::vector<DoubleMiddles>& lines, double pitch) {
  constexpr int rounds = 3;
  for (int round = 0; round < rounds; ++round) {
    double product = 0, square = 0;
    for (const DoubleMiddles& middles : lines) {
      if (middles.size() < 2) continue;
      const std::vector<double> places = placesOf(middles, pitch);
      const double center = mean(places);
      for (std::size_t i = 0; i < places.size(); ++i) {
        product += (places[i] - center) * middles[i] / 2.0;
        square += (places[i] - center) * (places[i] - center);
      }
    }
    if (square == 0 || product < 3 * square) break;
    pitch = product / square;
  }
  return pitch;
}

/// A pitch and how well the letters fit it.
struct Fit {
  double pitch = 0;
  double share = 0;         // Of the letters near the middle of a cell.
  std::size_t letters = 0;  // That could be elsewhere: one of each line tells where the cells are.

  /// Few are near by chance more often than many.
  bool isSure() const {
    return letters >= 16 && share >= std::min(0.99, 0.85 + 2.4 / static_cast<double>(letters));
  }
};

/// The pitch that fits the lines best.
Fit bestFit(const std::vector<DoubleMiddles>& lines) {
  constexpr double leastPitch = 3;
  // Where many letters touch, most distances are of several places.
  constexpr double shares[] = {0.5, 0.25, 0.1};
  std::vector<int> distances;
  for (const DoubleMiddles& middles : lines)
    for (std::size_t i = 1; i < middles.size(); ++i) distances.push_back(middles[i] - middles[i - 1]);
  Fit best;
  if (distances.empty()) return best;
  for (const double share : shares) {
    const double rough = levelAt(distances, share) / 2.0;
    if (rough < leastPitch) continue;
    const double pitch = refinedPitch(lines, rough);
    std::size_t near = 0, all = 0, free = 0;
    for (const DoubleMiddles& middles : lines) {
      if (middles.empty()) continue;
      near += lettersNearMiddles(middles, cellsOf(middles, pitch));
      all += middles.size();
      free += middles.size() - 1;
    }
    const Fit fit{pitch, static_cast<double>(near) / static_cast<double>(all), free};
    if (fit.share > best.share) best = fit;
  }
  return best;
}

/// The column between two cells with the least ink, near where their border should be.
int borderNear(double border, double pitch, const Glyph& glyph, const GreyBitmap& ink) {
  const int reach = std::max(1, static_cast<int>(std::lround(0.15 * pitch)));
  const int expected = static_cast<int>(std::lround(border));
  int best = expected;
  double least = std::numeric_limits<double>::infinity();
  for (int x = expected - reach; x <= expected + reach; ++x) {
    if (x <= glyph.box.left || x > glyph.box.right) continue;
    double sum = 0;
    for (int y = glyph.box.top; y <= glyph.box.bottom; ++y) sum += ink.at(x, y);
    sum *= 1 + 0.1 * std::abs(x - border);
    if (sum >= least) continue;
    best = x;
    least = sum;
  }
  return best;
}

/// The rows of a part of a glyph that have ink.
std::optional<Glyph> tightened(PixelBox box, int threshold, const GreyBitmap& ink) {
  const auto hasInk = [&](int y) {
    for (int x = box.left; x <= box.right; ++x)
      if (ink.at(x, y) >= threshold) return true;
    return false;
  };
  while (box.top <= box.bottom && !hasInk(box.top)) ++box.top;
  while (box.bottom >= box.top && !hasInk(box.bottom)) --box.bottom;
  if (box.top > box.bottom) return std::nullopt;
  return Glyph{box, true};
}

/// Parts glyphs that touch at the borders of the cells they lie in.
void cutAtCells(TextLine& line, const Cells& cells, const GreyBitmap& ink) {
  constexpr double mostInOne = 1.25;  // A glyph may be a little wider than its place.
  constexpr double sliver = 0.25;     // What is narrower belongs to the glyph beside it.
  const int threshold = std::max(1, fullInk(ink, line.glyphs) / 4);
  std::vector<Glyph> cut;
  for (const Glyph& glyph : line.glyphs) {
    if (glyph.width() <= mostInOne * cells.pitch) {
      cut.push_back(glyph);
      continue;
    }
    int left = glyph.box.left;
    double place = std::floor(cells.placeOf(left) + 0.5);
    while (left <= glyph.box.right) {
      const double border = cells.middle + (place + 0.5) * cells.pitch;
      place += 1;
      if (border - left < sliver * cells.pitch) continue;
      int end = glyph.box.right + 1;
      if (glyph.box.right - border >= sliver * cells.pitch) end = borderNear(border, cells.pitch, glyph, ink);
      if (const auto part = tightened({left, glyph.box.top, end - 1, glyph.box.bottom}, threshold, ink))
        cut.push_back(*part);
      left = end;
    }
  }
  line.glyphs = std::move(cut);
}

/// The cells of the line nearest to one of marks alone, which don't tell theirs: code is set in one grid.
std::optional<Cells> cellsBeside(const TextLine& marks, const std::vector<TextLine>& lines) {
  const auto distance = [&](const TextLine& line) { return std::abs(line.baseline - marks.baseline); };
  const TextLine* nearest = nullptr;
  for (const TextLine& line : lines)
    if (line.cells && (!nearest || distance(line) < distance(*nearest))) nearest = &line;
  return nearest ? nearest->cells : std::nullopt;
}

}  // namespace

void findCells(std::vector<TextLine>& lines, const GreyBitmap& ink) {
  std::vector<DoubleMiddles> middles;
  for (const TextLine& line : lines) middles.push_back(doubleMiddles(line));
  const Fit ofAll = bestFit(middles);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (middles[i].empty()) continue;
    double pitch = ofAll.pitch;
    if (ofAll.isSure()) {
      constexpr double most = 0.85;
      const auto near = static_cast<double>(lettersNearMiddles(middles[i], cellsOf(middles[i], pitch)));
      if (near < most * static_cast<double>(middles[i].size())) continue;
    } else {
      constexpr std::size_t fewest = 24;
      const Fit ofLine = bestFit({middles[i]});
      if (!ofLine.isSure() || ofLine.letters < fewest) continue;
      pitch = ofLine.pitch;
    }
    lines[i].cells = cellsOf(middles[i], pitch);
    cutAtCells(lines[i], *lines[i].cells, ink);
  }
  if (!ofAll.isSure()) return;
  for (std::size_t i = 0; i < lines.size(); ++i)
    if (middles[i].empty()) lines[i].cells = cellsBeside(lines[i], lines);
}

}  // namespace lumiscan::desktop
