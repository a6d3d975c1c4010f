#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// The ink of a character, or a part of it, or several that touch. In pixels of the image.
struct Cluster {
  std::vector<Glyph> glyphs;
  PixelBox box;
};

/// Whether a full stop or a comma stands beneath the stroke of a quotation mark, where fonts put it to close
/// the gap: it is no part of it. The parts of an exclamation mark are nearer, and the upper dot of a colon is
/// no stroke.
bool isBeneathQuotationMark(const Glyph& point, const Glyph& stroke);

/// The glyphs of a line, those above one another together, as a letter and its accent are; from left to
/// right.
std::vector<Cluster> clustersOf(const std::vector<Glyph>& glyphs);

/// Neighbours taken together. Precondition: `count` of them from `first` on.
Cluster joined(const std::vector<Cluster>& clusters, std::size_t first, std::size_t count);

}  // namespace lumiscan::desktop
