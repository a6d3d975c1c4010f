#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/LineShapes.h"

namespace lumiscan::desktop {

/// Holds what was read against the shapes of the ink, and mends what they surely contradict: signs that the
/// engine took for letters, ink it skipped, characters it added. The symbols' boxes, in pixels of the image,
/// become those of their ink.
void correctByShape(std::vector<Symbol>& symbols, LineShapes& shapes);

/// How many of the corrected symbols look like what they were read as: hardly any where there is no text.
std::size_t likelyCount(const std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
