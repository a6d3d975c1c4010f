#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// A stretch along x that is free of glyphs.
struct Gutter {
  int width;
  int end;  // Where the glyphs to its right begin.
};

/// The gutters between glyphs that are wider than `least` pixels, from left to right.
std::vector<Gutter> gutters(const std::vector<Glyph>& glyphs, int least);

/// Whether lines left and right of a gutter are those of columns, and not the cells of rows. `usual` is the
/// usual height of the letters.
bool areColumns(const std::vector<TextLine>& left, const std::vector<TextLine>& right, const Gutter& gutter,
                int usual);

}  // namespace lumiscan::desktop
