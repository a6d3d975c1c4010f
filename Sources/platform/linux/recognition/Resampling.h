#pragma once

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The bitmap enlarged or reduced to a size in pixels, smoothly and sharper than by linear transitions.
GreyBitmap resampled(const GreyBitmap& bitmap, int width, int height);

}  // namespace lumiscan::desktop
