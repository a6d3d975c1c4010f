#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The parts of an image that may each hold a matrix code: compact and full of contrast, with a plain
/// margin where the image has one. The largest first.
std::vector<PixelBox> regionsOfInterest(const GreyBitmap& image);

/// A part of an image, each pixel `factor` times as wide and high: as a square, or smoothly.
GreyBitmap enlargedPart(const GreyBitmap& image, const PixelBox& part, int factor, bool smooth);

/// The image with `margin` pixels of one value on each side.
GreyBitmap withMargin(const GreyBitmap& image, int margin, std::uint8_t value);

}  // namespace lumiscan::desktop
