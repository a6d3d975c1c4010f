#pragma once

#include <ZXing/BarcodeFormat.h>

#include <vector>

#include "platform/linux/recognition/FoundCode.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// All codes of `formats` in the image, each once, in no particular order but always the same. Uses as many
/// threads as there are processors. May throw what the library throws, and std::bad_alloc.
std::vector<FoundCode> searchCodes(const GreyBitmap& image, ZXing::BarcodeFormats formats);

}  // namespace lumiscan::desktop
