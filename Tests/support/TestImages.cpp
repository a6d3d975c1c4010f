#include "support/TestImages.h"

#include <cassert>
#include <cstddef>
#include <cstring>

namespace lumiscan::testing {

platform::Image coordinateImage(int width, int height, int padding) {
  assert(width <= 4096 && height <= 4096);
  const auto rowWords = static_cast<std::size_t>(width) + static_cast<std::size_t>(padding);
  std::shared_ptr<std::uint32_t[]> words(new std::uint32_t[rowWords * static_cast<std::size_t>(height)]);
  std::uint32_t* word = words.get();
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width + padding; ++x)
      *word++ = x < width ? static_cast<std::uint32_t>(y << 12 | x) : 0xFFFFFF;
  std::shared_ptr<const std::byte> pixels(words, reinterpret_cast<const std::byte*>(words.get()));
  return platform::Image(width, height, 4 * static_cast<std::ptrdiff_t>(rowWords),
                         platform::PixelFormat::xrgb, std::move(pixels));
}

std::uint32_t pixel(const platform::Image& image, int x, int y) {
  assert(x >= 0 && x < image.width() && y >= 0 && y < image.height());
  std::uint32_t word = 0;
  std::memcpy(&word, image.row(y) + 4 * static_cast<std::ptrdiff_t>(x), sizeof word);
  return word & 0xFFFFFF;
}

}  // namespace lumiscan::testing
