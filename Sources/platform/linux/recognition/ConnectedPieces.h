#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The boxes around the pieces of ink that hang together, also by corners: of pixels that are at least
/// `threshold`. In pixels of the image. Throws std::bad_alloc.
std::vector<PixelBox> connectedPieces(const GreyBitmap& ink, int threshold);

/// The boxes around boxes that are no more than `gap` pixels from each other. All lie in the image, whose
/// size is that of `ink`. Throws std::bad_alloc.
std::vector<PixelBox> joinedWhereNear(const std::vector<PixelBox>& boxes, int gap, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
