#include "platform/linux/recognition/GreyBitmap.h"

#include <algorithm>
#include <cstring>

namespace lumiscan::desktop {

GreyBitmap::GreyBitmap(int w, int h, std::uint8_t value)
    : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), value) {}

std::optional<platform::Error> sizeProblem(const platform::Image& image) {
  constexpr int largestSide = 16384;
  if (image.width() <= largestSide && image.height() <= largestSide) return std::nullopt;
  return platform::Error{"The image is larger than 16384 by 16384 pixels"};
}

void copyOpaqueRow(const platform::Image& image, int y, std::span<std::uint32_t> colors) {
  std::memcpy(colors.data(), image.row(y), colors.size_bytes());
  if (image.format() == platform::PixelFormat::xrgb) {
    for (std::uint32_t& color : colors) color &= 0xFFFFFF;
    return;
  }
  for (std::uint32_t& color : colors) {
    const std::uint32_t white = 255 - (color >> 24);
    const auto component = [&](unsigned shift) {
      return std::min<std::uint32_t>(255, ((color >> shift) & 255) + white) << shift;
    };
    color = component(16) | component(8) | component(0);
  }
}

GreyBitmap greyBitmap(const platform::Image& image) {
  GreyBitmap grey(image.width(), image.height(), 0);
  std::vector<std::uint32_t> colors(static_cast<std::size_t>(image.width()));
  auto pixel = grey.pixels.begin();
  for (int y = 0; y < image.height(); ++y) {
    copyOpaqueRow(image, y, colors);
    for (const std::uint32_t color : colors) {
      const std::uint32_t sum = 77 * (color >> 16) + 150 * ((color >> 8) & 255) + 29 * (color & 255);
      *pixel++ = static_cast<std::uint8_t>((sum + 128) >> 8);
    }
  }
  return grey;
}

GreyBitmap inverted(const GreyBitmap& bitmap) {
  GreyBitmap result = bitmap;
  for (std::uint8_t& pixel : result.pixels) pixel = static_cast<std::uint8_t>(255 - pixel);
  return result;
}

void fillBox(GreyBitmap& bitmap, const PixelBox& box, std::uint8_t value) {
  for (int y = std::max(0, box.top); y <= std::min(bitmap.height - 1, box.bottom); ++y)
    for (int x = std::max(0, box.left); x <= std::min(bitmap.width - 1, box.right); ++x)
      bitmap.at(x, y) = value;
}

}  // namespace lumiscan::desktop
