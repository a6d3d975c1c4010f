#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/LineShapes.h"

namespace lumiscan::desktop {

/// One reading of a line out of several: each piece of its ink is what most readings, and its shape, say it
/// is. Boxes are in pixels of the image. Precondition: there is a reading.
std::vector<Symbol> vote(std::vector<std::vector<Symbol>> readings, LineShapes& shapes);

}  // namespace lumiscan::desktop
