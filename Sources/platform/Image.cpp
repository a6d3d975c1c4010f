#include "platform/Image.h"

#include <cassert>
#include <cstdint>
#include <utility>

namespace lumiscan::platform {

Image::Image(int width, int height, std::ptrdiff_t bytesPerRow, PixelFormat format,
             std::shared_ptr<const std::byte> pixels)
    : width_(width), height_(height), bytesPerRow_(bytesPerRow), format_(format), pixels_(std::move(pixels)) {
  assert(width_ > 0 && height_ > 0 && pixels_);
  assert(bytesPerRow_ % 4 == 0 && bytesPerRow_ >= 4 * static_cast<std::ptrdiff_t>(width_));
}

std::optional<Image> Image::cropped(const Rect& rect) const {
  const Rect bounds{{0, 0}, {static_cast<double>(width_), static_cast<double>(height_)}};
  const Rect part = intersection(integral(rect), bounds);
  if (!(part.size.width > 0)) return std::nullopt;
  const auto x = static_cast<std::ptrdiff_t>(part.origin.x);
  const auto y = static_cast<int>(part.origin.y);
  // The alias keeps the whole memory alive and points into it.
  std::shared_ptr<const std::byte> pixels(pixels_, row(y) + 4 * x);
  return Image(static_cast<int>(part.size.width), static_cast<int>(part.size.height), bytesPerRow_, format_,
               std::move(pixels));
}

Image enlarged(const Image& image, int factor) {
  assert(factor > 0);
  const int width = image.width() * factor;
  const int height = image.height() * factor;
  const auto rowWords = static_cast<std::size_t>(width);
  std::shared_ptr<std::uint32_t[]> words(new std::uint32_t[rowWords * static_cast<std::size_t>(height)]);
  for (int y = 0; y < height; ++y) {
    const auto* source = reinterpret_cast<const std::uint32_t*>(image.row(y / factor));
    std::uint32_t* target = words.get() + rowWords * static_cast<std::size_t>(y);
    for (int x = 0; x < width; ++x) target[x] = source[x / factor];
  }
  std::shared_ptr<const std::byte> pixels(words, reinterpret_cast<const std::byte*>(words.get()));
  return Image(width, height, 4 * static_cast<std::ptrdiff_t>(width), image.format(), std::move(pixels));
}

}  // namespace lumiscan::platform
