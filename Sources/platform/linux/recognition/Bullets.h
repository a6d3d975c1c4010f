#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Makes what was read of filled discs bullets, where they stand alone at the middle of small letters: before
/// the items of a list, or between words. The models know none. Boxes in pixels of the image.
void correctBullets(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                    const TextLine& line);

}  // namespace lumiscan::desktop
