#include "platform/linux/recognition/Surfaces.h"

#include <algorithm>
#include <numeric>
#include <span>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

namespace {

/// Of each pixel another one of its surface with a lower index, or itself if it is the first.
using Parents = std::vector<std::uint32_t>;

inline std::uint32_t root(Parents& parents, std::uint32_t pixel) {
  while (parents[pixel] != pixel) pixel = parents[pixel] = parents[parents[pixel]];
  return pixel;
}

inline void join(Parents& parents, std::size_t a, std::size_t b) {
  const std::uint32_t first = root(parents, static_cast<std::uint32_t>(a));
  const std::uint32_t second = root(parents, static_cast<std::uint32_t>(b));
  parents[std::max(first, second)] = std::min(first, second);
}

}  // namespace

Surfaces::Surfaces(const platform::Image& image)
    : width_(image.width()),
      height_(image.height()),
      colors_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)),
      labels_(colors_.size()) {
  for (int y = 0; y < height_; ++y)
    copyOpaqueRow(image, y, std::span(colors_).subspan(index(0, y), static_cast<std::size_t>(width_)));
  joinNeighbours();
  number();
}

void Surfaces::joinNeighbours() {
  std::iota(labels_.begin(), labels_.end(), 0U);
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) {
      const std::size_t i = index(x, y);
      if (x > 0 && sameSurface(colors_[i], colors_[i - 1])) join(labels_, i, i - 1);
      const std::size_t above = i - static_cast<std::size_t>(width_);
      if (y > 0 && sameSurface(colors_[i], colors_[above])) join(labels_, i, above);
    }
}

/// Gives every pixel the number of its surface, in place of another pixel of it.
void Surfaces::number() {
  // A root is the first pixel of its surface, so its number is known before the others'.
  for (std::size_t i = 0; i < labels_.size(); ++i) {
    const int x = xOf(i);
    const int y = yOf(i);
    if (labels_[i] == i) {
      labels_[i] = count();
      surfaces_.push_back({colors_[i], 0, x, y, x, y});
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

std::uint32_t Surfaces::largest() const {
  const auto hasLessArea = [](const Surface& a, const Surface& b) { return a.area < b.area; };
  return static_cast<std::uint32_t>(std::max_element(surfaces_.begin(), surfaces_.end(), hasLessArea) -
                                    surfaces_.begin());
}

Run Surfaces::runInRow(std::uint32_t label, int y) const {
  Run run{surfaces_[label].left, surfaces_[label].right};
  while (run.first <= run.last && labels_[index(run.first, y)] != label) ++run.first;
  while (run.last > run.first && labels_[index(run.last, y)] != label) --run.last;
  return run;
}

Run Surfaces::runInColumn(std::uint32_t label, int x) const {
  Run run{surfaces_[label].top, surfaces_[label].bottom};
  while (run.first <= run.last && labels_[index(x, run.first)] != label) ++run.first;
  while (run.last > run.first && labels_[index(x, run.last)] != label) --run.last;
  return run;
}

bool Surfaces::hasCorners(std::uint32_t label, const Surface& box) const {
  const auto has = [&](int x, int y) {
    const std::size_t i = index(x, y);
    return labels_[i] == label || colors_[i] == surfaces_[label].color;
  };
  return has(box.left, box.top) && has(box.right, box.top) && has(box.left, box.bottom) &&
         has(box.right, box.bottom);
}

}  // namespace lumiscan::desktop
