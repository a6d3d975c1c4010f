#include "platform/linux/recognition/LineShapes.h"

#include <algorithm>
#include <cstdlib>

#include "platform/linux/recognition/LineImage.h"

namespace lumiscan::desktop {

LineShapes::LineShapes(const GreyBitmap& ink, const TextLine& line, const std::vector<Glyph>& glyphs)
    : ink_(ink), line_(line), clusters_(clustersOf(glyphs)) {}

const Classification& LineShapes::classification(std::size_t first, std::size_t count) {
  const auto known = classified_.find({first, count});
  if (known != classified_.end()) return known->second;
  const GlyphShape shape = shapeOf(ink_, joined(clusters_, first, count), line_);
  return classified_.emplace(std::pair(first, count), GlyphClassifier::shared().classify(shape))
      .first->second;
}

PixelBox LineShapes::box(std::size_t first, std::size_t count) const {
  return joined(clusters_, first, count).box;
}

bool LineShapes::isPoint(std::size_t cluster) const {
  const Cluster& it = clusters_[cluster];
  const int most = std::max(2, line_.letterHeight / 3);
  return it.glyphs.size() == 1 && it.glyphs.front().width() <= most && it.glyphs.front().height() <= most &&
         std::abs(it.box.bottom + 1 - line_.baseline) <= 1;
}

bool LineShapes::beginsWithPoint(std::size_t cluster) const {
  const Cluster& it = clusters_[cluster];
  const int side = std::max(2, line_.letterHeight / 6);
  const int full = fullInk(ink_, it.glyphs);
  for (int y = it.box.top; y < line_.baseline - std::max(2, line_.letterHeight / 4); ++y)
    for (int x = it.box.left; x < std::min(it.box.left + side, it.box.right); ++x)
      if (2 * ink_.at(x, y) >= full) return false;
  return std::abs(it.box.bottom + 1 - line_.baseline) <= 1;
}

bool LineShapes::isCut(std::size_t cluster) const {
  return std::any_of(clusters_[cluster].glyphs.begin(), clusters_[cluster].glyphs.end(),
                     [](const Glyph& glyph) { return glyph.isCut; });
}

double likeness(const TextLine& line, const GreyBitmap& ink) {
  LineShapes shapes(ink, line, line.glyphs);
  double sum = 0;
  for (std::size_t i = 0; i < shapes.clusters().size(); ++i) {
    const Classification& shape = shapes.classification(i);
    if (shape.best() != Classification::noCharacter) sum += static_cast<double>(shape.bestProbability());
  }
  return sum;
}

}  // namespace lumiscan::desktop
