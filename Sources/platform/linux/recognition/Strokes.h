#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The strokes in a box that lie one behind the other, from left to right, also where their smoothed ends
/// meet: there the ink is fainter. All in pixels of the image.
std::vector<PixelBox> strokesAlong(const GreyBitmap& ink, const PixelBox& box);

}  // namespace lumiscan::desktop
