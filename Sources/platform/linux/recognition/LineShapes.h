#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/GlyphClassifier.h"

namespace lumiscan::desktop {

/// The clusters of a line and what the classifier makes of them, each or with its neighbours. Keeps
/// references to the ink and the line. One thread.
class LineShapes {
 public:
  LineShapes(const GreyBitmap& ink, const TextLine& line, const std::vector<Glyph>& glyphs);

  const std::vector<Cluster>& clusters() const { return clusters_; }
  const TextLine& line() const { return line_; }

  /// Precondition: there are `count` clusters from `first` on.
  const Classification& classification(std::size_t first, std::size_t count = 1);
  PixelBox box(std::size_t first, std::size_t count = 1) const;
  /// Whether it is a dot on the line. Its few pixels may have something of the ink beside them, and so no
  /// shape.
  bool isPoint(std::size_t cluster) const;
  /// Whether its ink begins as that of a dot on the line which touches what follows.
  bool beginsWithPoint(std::size_t cluster) const;
  /// Whether some of its ink may be that of its neighbours.
  bool isCut(std::size_t cluster) const;

 private:
  const GreyBitmap& ink_;
  const TextLine& line_;
  std::vector<Cluster> clusters_;
  std::map<std::pair<std::size_t, std::size_t>, Classification> classified_;
};

/// How much the ink of a line looks like characters, each of which counts up to 1.
double likeness(const TextLine& line, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
