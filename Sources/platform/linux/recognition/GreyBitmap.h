#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan::desktop {

/// The pixels from `left` to `right` and `top` to `bottom`, both ends included.
struct PixelBox {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
  std::int64_t area() const { return std::int64_t{width()} * height(); }
  bool contains(const PixelBox& other) const {
    return other.left >= left && other.right <= right && other.top >= top && other.bottom <= bottom;
  }
  bool operator==(const PixelBox&) const = default;
};

/// Luminances of an image's pixels, 0 black to 255 white; origin at the top left, y downwards.
struct GreyBitmap {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;

  GreyBitmap(int w, int h, std::uint8_t value);
  std::uint8_t& at(int x, int y) { return pixels[index(x, y)]; }
  std::uint8_t at(int x, int y) const { return pixels[index(x, y)]; }
  bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  }
};

/// Why an image is too large to be searched; nothing when it isn't.
std::optional<platform::Error> sizeProblem(const platform::Image& image);

/// Row `y` of the image as 0x00RRGGBB, what is transparent laid on white. `colors` has the image's width.
void copyOpaqueRow(const platform::Image& image, int y, std::span<std::uint32_t> colors);

GreyBitmap greyBitmap(const platform::Image& image);
GreyBitmap inverted(const GreyBitmap& bitmap);

/// Gives the pixels of the box one value, as far as it lies in the bitmap.
void fillBox(GreyBitmap& bitmap, const PixelBox& box, std::uint8_t value);

}  // namespace lumiscan::desktop
