#include "platform/linux/recognition/ImagePreparation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/linux/recognition/Grounds.h"
#include "platform/linux/recognition/Surfaces.h"

namespace lumiscan::desktop {

namespace {

/// The mixture of two colours that is most like another one.
std::uint32_t mixtureLike(std::uint32_t color, std::uint32_t a, std::uint32_t b) {
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

class Preparation {
 public:
  Preparation(const Surfaces& surfaces, const Grounds& grounds)
      : surfaces_(surfaces), grounds_(grounds), ground_(surfaces_.colors()) {
    std::vector<bool> known(ground_.size());
    for (std::size_t i = 0; i < known.size(); ++i) known[i] = grounds_.isGround(surfaces_.labelAt(i));
    spread(known, [this](std::size_t a, std::size_t b) {
      return grounds_.rectangleAt(a) == grounds_.rectangleAt(b);
    });
    spread(known, [](std::size_t, std::size_t) { return true; });
  }

  GreyBitmap ink() const {
    GreyBitmap result(surfaces_.width(), surfaces_.height(), 0);
    for (std::size_t i = 0; i < ground_.size(); ++i)
      if (!grounds_.isGround(surfaces_.labelAt(i))) result.pixels[i] = inkAt(i);
    for (const std::uint32_t label : grounds_.labels()) clearBorder(label, result);
    return result;
  }

 private:
  /// Gives the neighbours of pixels whose ground is known the same one, and so on, where they may share it.
  template <typename MayShare>
  void spread(std::vector<bool>& known, MayShare&& mayShare) {
    std::vector<std::size_t> front;
    for (std::size_t i = 0; i < ground_.size(); ++i) {
      if (!known[i]) continue;
      bool atEdge = false;
      surfaces_.visitNeighbours(i, [&](std::size_t n) { atEdge = atEdge || !known[n]; });
      if (atEdge) front.push_back(i);
    }
    while (!front.empty()) {
      std::vector<std::size_t> next;
      for (const std::size_t i : front)
        surfaces_.visitNeighbours(i, [&](std::size_t n) {
          if (known[n] || !mayShare(i, n)) return;
          known[n] = true;
          ground_[n] = ground_[i];
          next.push_back(n);
        });
      front.swap(next);
    }
  }

  /// How far a pixel is from what is behind it. Where two grounds meet, as at the rounded corner of a box, it
  /// may be a mixture of both.
  std::uint8_t inkAt(std::size_t i) const {
    const std::uint32_t color = surfaces_.colors()[i];
    std::uint8_t ink = colorDistance(color, ground_[i]);
    surfaces_.visitNeighbours(i, [&](std::size_t n) {
      if (!sameSurface(ground_[i], ground_[n]))
        ink = std::min(ink, colorDistance(color, mixtureLike(color, ground_[i], ground_[n])));
    });
    return ink;
  }

  /// Clears the border and the shadow that a box has on the ground around it.
  void clearBorder(std::uint32_t label, GreyBitmap& ink) const {
    constexpr int mostBorder = 6;  // Pixels.
    const Surface& box = surfaces_[label];
    std::vector<std::size_t> border;
    std::size_t sides = 0;
    std::size_t borderedSides = 0;
    const auto follow = [&](int x, int y, int dx, int dy) {
      ++sides;
      const std::size_t before = border.size();
      for (int i = 0; i <= mostBorder; ++i) {
        x += dx;
        y += dy;
        const bool isInside = x >= 0 && y >= 0 && x < surfaces_.width() && y < surfaces_.height();
        if (!isInside || grounds_.isGround(surfaces_.labelAt(surfaces_.index(x, y)))) {
          borderedSides += i > 0;
          return;
        }
        border.push_back(surfaces_.index(x, y));
      }
      border.resize(before);
    };
    std::vector<Run> rows;
    for (int y = box.top; y <= box.bottom; ++y) {
      const Run run = rows.emplace_back(surfaces_.runInRow(label, y));
      follow(run.first, y, -1, 0);
      follow(run.last, y, 1, 0);
    }
    std::vector<Run> columns;
    for (int x = box.left; x <= box.right; ++x) {
      const Run run = columns.emplace_back(surfaces_.runInColumn(label, x));
      follow(x, run.first, 0, -1);
      follow(x, run.last, 0, 1);
    }
    // Letters may begin where a marked part of a line ends.
    if (2 * borderedSides < sides) return;
    // What is left are shadows around the corners, and what is cut off between a round corner and the edge of
    // the image.
    const auto isBeyond = [](int place, int from, const std::vector<Run>& runs, int across) {
      const int last = from + static_cast<int>(runs.size()) - 1;
      if (place < from - mostBorder || place > last + mostBorder) return false;
      if (place < from || place > last) return true;
      const Run& run = runs[static_cast<std::size_t>(place - from)];
      return across < run.first || across > run.last;
    };
    while (!border.empty()) {
      const std::size_t i = border.back();
      border.pop_back();
      ink.pixels[i] = 0;
      surfaces_.visitNeighbours(i, [&](std::size_t n) {
        const int x = surfaces_.xOf(n);
        const int y = surfaces_.yOf(n);
        if (ink.pixels[n] > 0 && isBeyond(x, box.left, columns, y) && isBeyond(y, box.top, rows, x))
          border.push_back(n);
      });
    }
  }

  const Surfaces& surfaces_;
  const Grounds& grounds_;
  // Of each pixel: the colour behind it, that of the nearest pixel of a ground, in its rectangle if there is
  // one.
  std::vector<std::uint32_t> ground_;
};

}  // namespace

GreyBitmap inkOf(const Surfaces& surfaces, const Grounds& grounds) {
  return Preparation(surfaces, grounds).ink();
}

GreyBitmap inkOf(const platform::Image& image) {
  const Surfaces surfaces(image);
  return inkOf(surfaces, Grounds(surfaces));
}

}  // namespace lumiscan::desktop
