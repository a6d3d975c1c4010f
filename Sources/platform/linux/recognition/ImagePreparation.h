#pragma once

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/Grounds.h"
#include "platform/linux/recognition/Surfaces.h"

namespace lumiscan::desktop {

/// The image as ink: 0 where a pixel has the colour of the ground around it, more the further it is from
/// that colour, whichever of the two is the lighter. Grounds are told apart by region: a page, a
/// button on it, a title bar with light letters each have their own.
GreyBitmap inkOf(const Surfaces& surfaces, const Grounds& grounds);
GreyBitmap inkOf(const platform::Image& image);

}  // namespace lumiscan::desktop
