#pragma once

#include <ZXing/Result.h>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The bars of a linear code, as far as they reach.
struct Bars {
  PixelBox box;
  int length = 0;  ///< In pixels, along the bars.
};

/// Follows the bars from the line on which the library read them, and paints them over with `paint`.
/// `position` is what the library says, in pixels of the bitmap.
Bars paintOverBars(GreyBitmap& bitmap, const ZXing::Position& position, std::uint8_t paint);

}  // namespace lumiscan::desktop
