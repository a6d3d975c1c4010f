#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/Image.h"

namespace lumiscan::desktop {

/// A channel of a colour, 0 to 255: 16 bits up for red, 8 for green, 0 for blue.
inline int channel(std::uint32_t color, int shift) { return static_cast<int>((color >> shift) & 255); }

/// Whether neighbours belong to one surface: the same colour, or a step of a gradient.
inline bool sameSurface(std::uint32_t a, std::uint32_t b) {
  constexpr int step = 3;
  return std::abs(channel(a, 16) - channel(b, 16)) <= step &&
         std::abs(channel(a, 8) - channel(b, 8)) <= step && std::abs(channel(a, 0) - channel(b, 0)) <= step;
}

/// How far two colours are from each other to the eye that reads, 0 to 255.
inline std::uint8_t colorDistance(std::uint32_t a, std::uint32_t b) {
  const int red = channel(a, 16) - channel(b, 16);
  const int green = channel(a, 8) - channel(b, 8);
  const int blue = channel(a, 0) - channel(b, 0);
  const double luminance = std::abs(0.299 * red + 0.587 * green + 0.114 * blue);
  // Letters may differ from their ground in colour alone.
  const double hue = 0.6 * std::max({std::abs(red), std::abs(green), std::abs(blue)});
  return static_cast<std::uint8_t>(std::lround(std::max(luminance, hue)));
}

/// A connected surface of one colour or gradient.
struct Surface {
  std::uint32_t color;  // Of one of its pixels.
  std::size_t area = 0;
  int left, top, right, bottom;  // Of its box, both ends included.

  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
  double boxArea() const { return static_cast<double>(width()) * height(); }
  bool isWithin(const Surface& outer) const {
    return left >= outer.left && right <= outer.right && top >= outer.top && bottom <= outer.bottom;
  }
};

/// The first and the last pixel of a surface in a row or a column.
struct Run {
  int first, last;
  int length() const { return last - first + 1; }
};

/// An image taken apart into its surfaces. Coordinates are pixels from the top left corner, y downwards.
class Surfaces {
 public:
  explicit Surfaces(const platform::Image& image);

  int width() const { return width_; }
  int height() const { return height_; }
  std::size_t pixelCount() const { return colors_.size(); }
  /// Where a pixel is among all, row by row.
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }
  int xOf(std::size_t pixel) const { return static_cast<int>(pixel % static_cast<std::size_t>(width_)); }
  int yOf(std::size_t pixel) const { return static_cast<int>(pixel / static_cast<std::size_t>(width_)); }
  /// Of each pixel: its colour.
  const std::vector<std::uint32_t>& colors() const { return colors_; }

  std::uint32_t count() const { return static_cast<std::uint32_t>(surfaces_.size()); }
  const Surface& operator[](std::uint32_t label) const { return surfaces_[label]; }
  /// The number of the surface that a pixel is of.
  std::uint32_t labelAt(std::size_t pixel) const { return labels_[pixel]; }
  std::uint32_t largest() const;

  /// Precondition: the surface has a pixel there.
  Run runInRow(std::uint32_t label, int y) const;
  Run runInColumn(std::uint32_t label, int x) const;
  /// Whether a surface has the pixels at the corners of a box, or they its colour: letters at the ends of a
  /// box cut them off.
  bool hasCorners(std::uint32_t label, const Surface& box) const;

  /// Calls back with the pixels beside and above and below one.
  template <typename Visit>
  void visitNeighbours(std::size_t pixel, Visit&& visit) const {
    const auto width = static_cast<std::size_t>(width_);
    if (pixel % width > 0) visit(pixel - 1);
    if (pixel % width + 1 < width) visit(pixel + 1);
    if (pixel >= width) visit(pixel - width);
    if (pixel + width < colors_.size()) visit(pixel + width);
  }

 private:
  void joinNeighbours();
  void number();

  int width_;
  int height_;
  std::vector<std::uint32_t> colors_;
  std::vector<std::uint32_t> labels_;  // Of each pixel: the number of its surface.
  std::vector<Surface> surfaces_;
};

}  // namespace lumiscan::desktop
