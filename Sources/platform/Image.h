#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "platform/Geometry.h"

namespace lumiscan::platform {

/// How the four bytes of a pixel are read. Both are one 32-bit word in the machine's byte order.
enum class PixelFormat {
  xrgb,               ///< 0x??RRGGBB, opaque; the top byte is noise.
  argbPremultiplied,  ///< 0xAARRGGBB, the colours already multiplied by alpha.
};

/// A bitmap that never changes once made: copying an `Image` shares the pixels. In pixels, origin at the
/// top left, y downwards. May be used from any thread.
class Image {
 public:
  /// `pixels` points at the top-left pixel and owns the memory of all rows; row y starts at
  /// `pixels + y * bytesPerRow`. Precondition: `width` and `height` are positive and `bytesPerRow` is a
  /// multiple of 4 and at least `4 * width`.
  Image(int width, int height, std::ptrdiff_t bytesPerRow, PixelFormat format,
        std::shared_ptr<const std::byte> pixels);

  int width() const { return width_; }
  int height() const { return height_; }
  std::ptrdiff_t bytesPerRow() const { return bytesPerRow_; }
  PixelFormat format() const { return format_; }

  /// The first pixel of row `y`, valid as long as any image that shares the memory.
  const std::byte* row(int y) const { return pixels_.get() + y * bytesPerRow_; }

  /// The part inside `rect`, which is cut to the image's bounds and must be whole pixels; shares the
  /// memory. Nothing when no pixel is inside.
  std::optional<Image> cropped(const Rect& rect) const;

 private:
  int width_;
  int height_;
  std::ptrdiff_t bytesPerRow_;
  PixelFormat format_;
  std::shared_ptr<const std::byte> pixels_;
};

/// Each pixel as a square of `factor` by `factor` pixels. Precondition: `factor` is positive.
Image enlarged(const Image& image, int factor);

}  // namespace lumiscan::platform
