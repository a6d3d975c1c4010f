#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// The ink of a character, or a part of it, or several that touch. In pixels of the image.
struct Cluster {
  std::vector<Glyph> glyphs;
  PixelBox box;
};

/// The glyphs of a line, those above one another together, as a letter and its accent are; from left to
/// right.
std::vector<Cluster> clustersOf(const std::vector<Glyph>& glyphs);

/// Neighbours taken together. Precondition: `count` of them from `first` on.
Cluster joined(const std::vector<Cluster>& clusters, std::size_t first, std::size_t count);

}  // namespace lumiscan::desktop
