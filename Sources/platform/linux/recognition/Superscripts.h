#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/LineShapes.h"

namespace lumiscan::desktop {

/// Digits that stand high, as the numbers of footnotes do, and were read as marks that stand as high, become
/// digits. Pixels of the image.
void correctSuperscripts(std::vector<Symbol>& symbols, const LineShapes& shapes, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
