#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Erases the strokes beneath words that touch some of their letters, which would be one glyph
/// with all of the stroke; false where there is none. Where a letter crosses the stroke its ink stays.
/// `usual` is the usual height of a letter, `threshold` the ink from which a pixel is a glyph's.
bool eraseUnderlines(GreyBitmap& ink, const std::vector<Glyph>& glyphs, int usual, int threshold);

}  // namespace lumiscan::desktop
