#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/Image.h"

namespace lumiscan::fuzzing {

inline std::uint32_t colorOf(std::uint8_t cell, platform::PixelFormat format) {
  const std::uint32_t red = (cell & 7U) * 255 / 7;
  const std::uint32_t green = (cell >> 3 & 7U) * 255 / 7;
  const std::uint32_t blue = (cell >> 6U) * 255 / 3;
  // The fourth byte of an opaque pixel is noise.
  const std::uint32_t top = format == platform::PixelFormat::xrgb ? cell : red;
  return top << 24 | red << 16 | green << 8 | blue;
}

/// An image of at most `mostPixels` pixels, of any size, stride, format and alpha, as the bytes say:
///
///   0-1  width, little-endian      4  bit 0: premultiplied alpha; bits 1-4: unused words after each row
///   2-3  height                    5  bits 0-2: how many pixels wide and high a cell is, less one
///   6-   a byte a cell, row by row: bits 0-2 red, 3-5 green, 6-7 blue. Where they end, all is white.
///
/// With alpha a cell's red is also how opaque it is, so colours may be brighter than their alpha allows.
/// The memory ends with the last pixel, so that reading beyond it is noticed.
inline platform::Image imageFromBytes(std::string_view bytes, std::size_t mostPixels) {
  const auto byteAt = [&](std::size_t i) {
    return i < bytes.size() ? static_cast<std::uint8_t>(bytes[i]) : std::uint8_t{0xFF};
  };
  const auto sideAt = [&](std::size_t i) {
    return 1 + (byteAt(i) | static_cast<std::size_t>(byteAt(i + 1)) << 8) % 20'000;
  };
  constexpr std::size_t header = 6;
  const std::size_t width = std::min(sideAt(0), mostPixels);
  const std::size_t height = std::min(sideAt(2), mostPixels / width);
  using platform::PixelFormat;
  const auto format = (byteAt(4) & 1) != 0 ? PixelFormat::argbPremultiplied : PixelFormat::xrgb;
  const std::size_t stride = width + (byteAt(4) >> 1 & 15U);
  const std::size_t cell = 1 + (byteAt(5) & 7U);
  const std::size_t columns = (width + cell - 1) / cell;

  const std::size_t words = stride * (height - 1) + width;
  auto pixels = std::make_unique<std::uint32_t[]>(words);
  for (std::size_t y = 0; y < height; ++y)
    for (std::size_t x = 0; x < width; ++x)
      pixels[y * stride + x] = colorOf(byteAt(header + y / cell * columns + x / cell), format);
  const std::shared_ptr<std::uint32_t[]> owner(std::move(pixels));
  return {static_cast<int>(width),
          static_cast<int>(height),
          static_cast<std::ptrdiff_t>(stride * 4),
          format,
          {owner, reinterpret_cast<const std::byte*>(owner.get())}};
}

}  // namespace lumiscan::fuzzing
