#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The parts of an image that may each hold a code, with the ground around it where the image has some: full
/// of contrast and about as much dark as light, which text is not. The smallest first.
std::vector<PixelBox> regionsOfInterest(const GreyBitmap& image);

}  // namespace lumiscan::desktop
