#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Image.h"

namespace lumiscan::testing {

/// A picture whose every pixel tells where it is: 0xYYYXXX. At most 4096 pixels wide and high.
inline platform::Image coordinateImage(int width, int height) {
  assert(width <= 4096 && height <= 4096);
  const auto words = std::make_shared<std::vector<std::uint32_t>>();
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) words->push_back(static_cast<std::uint32_t>(y << 12 | x));
  std::shared_ptr<const std::byte> pixels(words, reinterpret_cast<const std::byte*>(words->data()));
  return {width, height, 4 * static_cast<std::ptrdiff_t>(width), platform::PixelFormat::xrgb,
          std::move(pixels)};
}

/// The lower 24 bits of a pixel.
inline std::uint32_t pixel(const platform::Image& image, int x, int y) {
  assert(x >= 0 && x < image.width() && y >= 0 && y < image.height());
  std::uint32_t word = 0;
  std::memcpy(&word, image.row(y) + 4 * static_cast<std::ptrdiff_t>(x), sizeof word);
  return word & 0xFFFFFF;
}

}  // namespace lumiscan::testing
