#pragma once

#include <cstdint>

#include "platform/Image.h"

namespace lumiscan::testing {

/// A picture whose every pixel tells where it is: 0xYYYXXX. At most 4096 pixels wide and high.
/// `padding` more pixels, of value 0xFFFFFF, end each row in memory.
platform::Image coordinateImage(int width, int height, int padding = 0);

/// The lower 24 bits of a pixel.
std::uint32_t pixel(const platform::Image& image, int x, int y);

}  // namespace lumiscan::testing
