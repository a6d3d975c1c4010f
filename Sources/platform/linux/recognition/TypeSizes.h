#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// The lines of a strip of the image where larger type stands beside smaller, as a price does before what it
/// is for: each piece of one size is a line, or several, from left to right. Nothing where all is of one
/// size. `strip` isn't empty.
std::vector<TextLine> linesOfSizes(const std::vector<Glyph>& strip, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
