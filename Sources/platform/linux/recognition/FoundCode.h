#pragma once

#include <ZXing/Result.h>

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

struct FoundCode {
  ZXing::Result result;
  PixelBox box;  ///< Around the code, in pixels of the searched image; may reach beyond its edges.
};

/// Adds a code unless it is there already: the same payload at the same place.
void addIfNew(std::vector<FoundCode>& codes, FoundCode code);

}  // namespace lumiscan::desktop
