#pragma once

#include <ZXing/BarcodeFormat.h>

#include <vector>

#include "platform/linux/recognition/FoundCode.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

struct ReadOptions {
  ZXing::BarcodeFormats formats;
  int shortestBars = 1;         ///< In pixels along the bars; a linear code with shorter ones is none.
  bool fixedThreshold = false;  ///< Dark is what is darker than medium grey, not than its surroundings.
};

/// What the library reads in an image as it is: dark codes on light, upright and turned, each once. May throw
/// what the library throws, and std::bad_alloc.
std::vector<FoundCode> readCodes(GreyBitmap bitmap, const ReadOptions& options);

}  // namespace lumiscan::desktop
