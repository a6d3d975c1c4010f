#include "platform/linux/recognition/ImagePreparation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace lumiscan::desktop {

namespace {

int channel(std::uint32_t color, int shift) { return static_cast<int>((color >> shift) & 255); }

/// Whether neighbours belong to one surface: the same colour, or a step of a gradient.
bool sameSurface(std::uint32_t a, std::uint32_t b) {
  constexpr int step = 3;
  return std::abs(channel(a, 16) - channel(b, 16)) <= step &&
         std::abs(channel(a, 8) - channel(b, 8)) <= step && std::abs(channel(a, 0) - channel(b, 0)) <= step;
}

/// A connected surface of one colour or gradient.
struct Surface {
  std::size_t area = 0;
  int left, top, right, bottom;  // Of its box, both ends included.

  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
  double boxArea() const { return static_cast<double>(width()) * height(); }
  bool isWithin(const Surface& outer) const {
    return left >= outer.left && right <= outer.right && top >= outer.top && bottom <= outer.bottom;
  }
};

class Colors {
 public:
  explicit Colors(const platform::Image& image)
      : width_(image.width()),
        height_(image.height()),
        colors_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)) {
    for (int y = 0; y < height_; ++y)
      copyOpaqueRow(image, y, std::span(colors_).subspan(index(0, y), static_cast<std::size_t>(width_)));
  }

  GreyBitmap ink() {
    labelSurfaces();
    chooseGrounds();
    spreadGrounds();
    GreyBitmap result(width_, height_, 0);
    for (std::size_t i = 0; i < colors_.size(); ++i)
      if (!isGround_[labels_[i]]) result.pixels[i] = inkAt(i);
    return result;
  }

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
  }

  /// Calls back with the pixels beside and above and below one.
  template <typename Visit>
  void visitNeighbours(std::size_t i, Visit&& visit) const {
    const auto w = static_cast<std::size_t>(width_);
    if (i % w > 0) visit(i - 1);
    if (i % w + 1 < w) visit(i + 1);
    if (i >= w) visit(i - w);
    if (i + w < colors_.size()) visit(i + w);
  }

  /// How far a pixel is from what is behind it. Where two grounds meet, as at the rounded corner of a box, it
  /// may be a mixture of both.
  std::uint8_t inkAt(std::size_t i) const {
    std::uint8_t ink = distance(colors_[i], ground_[i]);
    visitNeighbours(i, [&](std::size_t n) {
      if (!sameSurface(ground_[i], ground_[n]))
        ink = std::min(ink, distance(colors_[i], mixtureLike(colors_[i], ground_[i], ground_[n])));
    });
    return ink;
  }

  /// The mixture of two colours that is most like another one.
  static std::uint32_t mixtureLike(std::uint32_t color, std::uint32_t a, std::uint32_t b) {
    double along = 0;
    double length = 0;
    for (const int shift : {16, 8, 0}) {
      const double step = channel(b, shift) - channel(a, shift);
      along += step * (channel(color, shift) - channel(a, shift));
      length += step * step;
    }
    const double share = std::clamp(along / length, 0.0, 1.0);
    std::uint32_t mixture = 0;
    for (const int shift : {16, 8, 0})
      mixture |= static_cast<std::uint32_t>(
                     std::lround(channel(a, shift) + share * (channel(b, shift) - channel(a, shift))))
                 << shift;
    return mixture;
  }

  static std::uint8_t distance(std::uint32_t a, std::uint32_t b) {
    const int red = channel(a, 16) - channel(b, 16);
    const int green = channel(a, 8) - channel(b, 8);
    const int blue = channel(a, 0) - channel(b, 0);
    const double luminance = std::abs(0.299 * red + 0.587 * green + 0.114 * blue);
    // Letters may differ from their ground in colour alone.
    const double hue = 0.6 * std::max({std::abs(red), std::abs(green), std::abs(blue)});
    return static_cast<std::uint8_t>(std::lround(std::max(luminance, hue)));
  }

  std::uint32_t root(std::uint32_t pixel) {
    while (labels_[pixel] != pixel) pixel = labels_[pixel] = labels_[labels_[pixel]];
    return pixel;
  }

  void join(std::size_t a, std::size_t b) {
    const std::uint32_t first = root(static_cast<std::uint32_t>(a));
    const std::uint32_t second = root(static_cast<std::uint32_t>(b));
    labels_[std::max(first, second)] = std::min(first, second);
  }

  /// Gives every pixel the number of its surface.
  void labelSurfaces() {
    labels_.resize(colors_.size());
    std::iota(labels_.begin(), labels_.end(), 0U);
    for (int y = 0; y < height_; ++y)
      for (int x = 0; x < width_; ++x) {
        const std::size_t i = index(x, y);
        if (x > 0 && sameSurface(colors_[i], colors_[i - 1])) join(i, i - 1);
        const std::size_t above = i - static_cast<std::size_t>(width_);
        if (y > 0 && sameSurface(colors_[i], colors_[above])) join(i, above);
      }
    // A root is the first pixel of its surface, so its number is known before the others'.
    for (std::size_t i = 0; i < labels_.size(); ++i) {
      const int x = static_cast<int>(i % static_cast<std::size_t>(width_));
      const int y = static_cast<int>(i / static_cast<std::size_t>(width_));
      if (labels_[i] == i) {
        labels_[i] = static_cast<std::uint32_t>(surfaces_.size());
        surfaces_.push_back({0, x, y, x, y});
      } else {
        labels_[i] = labels_[labels_[i]];
      }
      Surface& surface = surfaces_[labels_[i]];
      ++surface.area;
      surface.left = std::min(surface.left, x);
      surface.right = std::max(surface.right, x);
      surface.bottom = y;
    }
  }

  /// Grounds are the largest surface and those that are boxes with something in them.
  void chooseGrounds() {
    isGround_.assign(surfaces_.size(), false);
    const auto larger = [](const Surface& a, const Surface& b) { return a.area < b.area; };
    const auto largest = std::max_element(surfaces_.begin(), surfaces_.end(), larger);
    isGround_[static_cast<std::size_t>(largest - surfaces_.begin())] = true;
    for (std::uint32_t label = 0; label < surfaces_.size(); ++label)
      if (!isGround_[label] && isBox(label, *largest)) isGround_[label] = true;
  }

  /// Precondition: `largest` is a ground. What it covers of the box around it, as the chosen row of a list
  /// does, says nothing about that box, nor does the border that it may have.
  bool isBox(std::uint32_t label, const Surface& largest) const {
    constexpr int leastHeight = 10;
    constexpr int leastWidth = 14;
    constexpr int mostBorder = 3;
    constexpr double leastOwn = 0.45;    // Of the box's pixels are the surface's;
    constexpr double leastSpan = 0.955;  // of them lie between the surface's first and last in their row.
    const Surface& surface = surfaces_[label];
    const double boxArea = surface.boxArea();
    if (surface.width() < leastWidth || surface.height() < leastHeight ||
        surface.width() < surface.height() / 2)
      return false;
    const bool surroundsLargest = largest.isWithin(surface);
    const double covered = surroundsLargest ? largest.boxArea() : 0;
    if (static_cast<double>(surface.area) < leastOwn * (boxArea - covered)) return false;
    const auto isCovered = [&](int x, int y) {
      return surroundsLargest && x >= largest.left - mostBorder && x <= largest.right + mostBorder &&
             y >= largest.top - mostBorder && y <= largest.bottom + mostBorder;
    };
    double span = 0;
    double inside = 0;
    double enclosed = 0;
    for (int y = surface.top; y <= surface.bottom; ++y) {
      int first = surface.left;
      int last = surface.right;
      while (first <= last && labels_[index(first, y)] != label) ++first;
      while (last > first && labels_[index(last, y)] != label) --last;
      span += last - first + 1;
      for (int x = first; x <= last; ++x) {
        const Surface& other = surfaces_[labels_[index(x, y)]];
        if (&other == &surface || isCovered(x, y)) continue;
        ++inside;
        enclosed += other.isWithin(surface);
      }
    }
    // What is inside a letter's box is the page around it.
    return span >= leastSpan * boxArea && inside > 0.02 * (boxArea - covered) && enclosed >= 0.9 * inside;
  }

  /// Every pixel outside a ground gets the colour of the nearest pixel of one.
  void spreadGrounds() {
    ground_ = colors_;
    std::vector<bool> known(colors_.size());
    std::vector<std::size_t> front;
    for (std::size_t i = 0; i < colors_.size(); ++i) known[i] = isGround_[labels_[i]];
    for (std::size_t i = 0; i < colors_.size(); ++i) {
      if (!known[i]) continue;
      bool atEdge = false;
      visitNeighbours(i, [&](std::size_t n) { atEdge = atEdge || !known[n]; });
      if (atEdge) front.push_back(i);
    }
    while (!front.empty()) {
      std::vector<std::size_t> next;
      for (const std::size_t i : front)
        visitNeighbours(i, [&](std::size_t n) {
          if (known[n]) return;
          known[n] = true;
          ground_[n] = ground_[i];
          next.push_back(n);
        });
      front.swap(next);
    }
  }

  int width_;
  int height_;
  std::vector<std::uint32_t> colors_;
  std::vector<std::uint32_t> labels_;  // Of each pixel: the number of its surface.
  std::vector<Surface> surfaces_;
  std::vector<bool> isGround_;
  std::vector<std::uint32_t> ground_;  // Of each pixel: the colour behind it.
};

}  // namespace

GreyBitmap inkOf(const platform::Image& image) { return Colors(image).ink(); }

}  // namespace lumiscan::desktop
