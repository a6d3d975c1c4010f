#pragma once

#include <ZXing/BarcodeFormat.h>
#include <ZXing/Result.h>

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

struct FoundCode {
  ZXing::Result result;
  PixelBox box;  ///< Around the code, in pixels of the searched image.
};

/// All codes of `formats` in the image, each once, in no particular order. May throw what the library
/// throws, and std::bad_alloc.
std::vector<FoundCode> searchCodes(const GreyBitmap& image, ZXing::BarcodeFormats formats);

}  // namespace lumiscan::desktop
