#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/Image.h"

namespace lumiscan::fuzzing {

/// An image of at most `mostPixels` pixels, of any size, stride, format and alpha, as the bytes say:
///
///   0-1  width, little-endian      4  bit 0: premultiplied alpha; bits 1-4: unused words after each row
///   2-3  height                    5  bits 0-2: how many pixels wide and high a cell is, less one
///   6-   a byte a cell, row by row: bits 0-2 red, 3-5 green, 6-7 blue. Where they end, all is white.
///
/// With alpha a cell's red is also how opaque it is, so colours may be brighter than their alpha allows.
/// The memory ends with the last pixel, so that reading beyond it is noticed.
platform::Image imageFromBytes(std::span<const std::uint8_t> bytes, std::size_t mostPixels);

}  // namespace lumiscan::fuzzing
