#include "platform/linux/recognition/ImagePreparation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
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
    for (const std::uint32_t label : grounds_) clearBorder(label, result);
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
        const bool isInside = x >= 0 && y >= 0 && x < width_ && y < height_;
        if (!isInside || isGround_[labels_[index(x, y)]]) {
          borderedSides += i > 0;
          return;
        }
        border.push_back(index(x, y));
      }
      border.resize(before);
    };
    std::vector<Run> rows;
    for (int y = box.top; y <= box.bottom; ++y) {
      const Run run = rows.emplace_back(runInRow(label, y));
      follow(run.first, y, -1, 0);
      follow(run.last, y, 1, 0);
    }
    std::vector<Run> columns;
    for (int x = box.left; x <= box.right; ++x) {
      const Run run = columns.emplace_back(runInColumn(label, x));
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
      visitNeighbours(i, [&](std::size_t n) {
        const int x = static_cast<int>(n % static_cast<std::size_t>(width_));
        const int y = static_cast<int>(n / static_cast<std::size_t>(width_));
        if (ink.pixels[n] > 0 && isBeyond(x, box.left, columns, y) && isBeyond(y, box.top, rows, x))
          border.push_back(n);
      });
    }
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

  /// Grounds are the largest surface and those that are boxes with something in them.
  void chooseGrounds() {
    isGround_.assign(surfaces_.size(), false);
    isCovered_.assign(colors_.size(), false);
    rectangle_.assign(colors_.size(), noRectangle);
    const auto hasLessArea = [](const Surface& a, const Surface& b) { return a.area < b.area; };
    const auto largest = static_cast<std::uint32_t>(
        std::max_element(surfaces_.begin(), surfaces_.end(), hasLessArea) - surfaces_.begin());
    page_ = surfaces_[largest].color;
    std::vector<std::uint32_t> candidates;
    for (std::uint32_t label = 0; label < surfaces_.size(); ++label)
      if (label == largest || isOfBoxSize(surfaces_[label])) candidates.push_back(label);
    // From the inside to the outside.
    std::stable_sort(candidates.begin(), candidates.end(), [&](std::uint32_t a, std::uint32_t b) {
      return surfaces_[a].boxArea() < surfaces_[b].boxArea();
    });
    for (const std::uint32_t label : candidates) {
      if (label != largest && !isBox(label)) continue;
      isGround_[label] = true;
      grounds_.push_back(label);
      cover(surfaces_[label]);
      if (hasSharpCorners(label, surfaces_[label])) fillRectangle(label);
    }
  }

  static bool isOfBoxSize(const Surface& surface) {
    constexpr int leastHeight = 10;
    constexpr int leastWidth = 14;
    return surface.width() >= leastWidth && surface.height() >= leastHeight &&
           surface.width() >= surface.height() / 2;
  }

  /// Marks what a ground covers of the boxes around it, with the border that it may have.
  void cover(const Surface& ground) {
    constexpr int border = coveringBorder;
    for (int y = std::max(ground.top - border, 0); y <= std::min(ground.bottom + border, height_ - 1); ++y)
      for (int x = std::max(ground.left - border, 0); x <= std::min(ground.right + border, width_ - 1); ++x)
        isCovered_[index(x, y)] = true;
  }

  /// The most that the grounds within a surface may cover of it.
  double mostCoveredOf(const Surface& surface) const {
    double area = 0;
    for (const std::uint32_t label : grounds_)
      if (const Surface& ground = surfaces_[label]; ground.isWithin(surface))
        area += (ground.width() + 2.0 * coveringBorder) * (ground.height() + 2.0 * coveringBorder);
    return area;
  }

  /// All of a rectangle that no other is in has its colour behind it, also where letters reach its edge.
  void fillRectangle(std::uint32_t label) {
    const Surface& box = surfaces_[label];
    for (int y = box.top; y <= box.bottom; ++y)
      for (int x = box.left; x <= box.right; ++x)
        if (std::uint32_t& rectangle = rectangle_[index(x, y)]; rectangle == noRectangle) rectangle = label;
  }

  /// Precondition: the grounds within the surface are known. What they cover of it, as the chosen row of a
  /// list or the title bar of a window does, says nothing about it.
  bool isBox(std::uint32_t label) const {
    constexpr double leastOwn = 0.45;      // Of the box's pixels are the surface's;
    constexpr double leastInside = 0.008;  // and of them are what is in it.
    constexpr double mostPointer = 0.3;    // Of the height.
    const Surface& whole = surfaces_[label];
    // In photographs there are many large surfaces of few pixels, which aren't worth a closer look.
    if (static_cast<double>(whole.area) <
        leastOwn * ((1 - mostPointer) * whole.boxArea() - mostCoveredOf(whole)))
      return false;
    const Surface surface = withoutPointers(label);
    if (!isOfBoxSize(surface) || surface.height() < (1 - mostPointer) * whole.height()) return false;
    double span = 0;
    double inside = 0;
    double enclosed = 0;
    double covered = 0;
    for (int y = surface.top; y <= surface.bottom; ++y) {
      const Run run = runInRow(label, y);
      span += run.last - run.first + 1;
      for (int x = run.first; x <= run.last; ++x) {
        const std::size_t i = index(x, y);
        const Surface& other = surfaces_[labels_[i]];
        if (&other == &surfaces_[label]) continue;
        if (isCovered_[i]) {
          ++covered;
          continue;
        }
        ++inside;
        enclosed += other.isWithin(surface);
      }
    }
    const double boxArea = surface.boxArea() - covered;
    if (static_cast<double>(surface.area) < leastOwn * boxArea) return false;
    // What is around a box may be its border.
    if (covered > 0 && surface.area <= static_cast<std::size_t>(2 * coveringBorder) *
                                           static_cast<std::size_t>(surface.width() + surface.height()))
      return false;
    // What is inside a letter's box is the page around it.
    if ((covered == 0 && inside <= leastInside * boxArea) || enclosed < 0.9 * inside) return false;
    return span >= (1 - mostMissing(label, surface)) * surface.boxArea();
  }

  /// The most of a box that may lie outside the first and the last pixel of its rows.
  double mostMissing(std::uint32_t label, const Surface& box) const {
    constexpr double ofRoundCorners = 0.045;
    // At the ends of a marked part of a line stand letters.
    constexpr double ofLetters = 0.15;
    const double ofRoundEnds = 1 - std::numbers::pi / 4;  // Of the square around a circle lie outside it.
    if (hasSharpCorners(label, box)) return ofLetters;
    return ofRoundCorners + (isPill(label, box) ? ofRoundEnds * box.height() / box.width() : 0);
  }

  bool hasSharpCorners(std::uint32_t label, const Surface& box) const {
    const auto has = [&](int x, int y) { return labels_[index(x, y)] == label; };
    return has(box.left, box.top) && has(box.right, box.top) && has(box.left, box.bottom) &&
           has(box.right, box.bottom);
  }

  /// The first and the last pixel of a surface in a row or a column.
  struct Run {
    int first, last;
  };

  Run runInRow(std::uint32_t label, int y) const {
    Run run{surfaces_[label].left, surfaces_[label].right};
    while (run.first <= run.last && labels_[index(run.first, y)] != label) ++run.first;
    while (run.last > run.first && labels_[index(run.last, y)] != label) --run.last;
    return run;
  }

  Run runInColumn(std::uint32_t label, int x) const {
    Run run{surfaces_[label].top, surfaces_[label].bottom};
    while (run.first <= run.last && labels_[index(x, run.first)] != label) ++run.first;
    while (run.last > run.first && labels_[index(x, run.last)] != label) --run.last;
    return run;
  }

  /// A surface without the pointer above or below it that a tooltip has.
  Surface withoutPointers(std::uint32_t label) const {
    Surface surface = surfaces_[label];
    const auto isPointer = [&](int y) {
      const Run run = runInRow(label, y);
      return 2 * (run.last - run.first + 1) < surface.width();
    };
    while (surface.top < surface.bottom && isPointer(surface.top)) ++surface.top;
    while (surface.bottom > surface.top && isPointer(surface.bottom)) --surface.bottom;
    return surface;
  }

  /// Whether a surface may be a box whose ends are half circles: it keeps a distance from its ends to what is
  /// in it, which letters of such a shape don't.
  bool isPill(std::uint32_t label, const Surface& surface) const {
    constexpr double leastPadding = 0.28;  // Heights of the box.
    // Between letters that touch there are such shapes, of the page's colour.
    if (10 * surface.width() < 13 * surface.height() || sameSurface(surface.color, page_)) return false;
    const auto padding = static_cast<int>(std::ceil(leastPadding * surface.height()));
    for (int y = surface.top + surface.height() / 3; y <= surface.bottom - surface.height() / 3; ++y) {
      const Run run = runInRow(label, y);
      const int inset = std::max(run.first - surface.left, surface.right - run.last);
      if (10 * inset > surface.height() || run.last - run.first < 2 * padding) return false;
      for (int x = 0; x < padding; ++x)
        if (labels_[index(run.first + x, y)] != label || labels_[index(run.last - x, y)] != label)
          return false;
    }
    return true;
  }

  /// Every pixel outside a ground gets the colour of the nearest pixel of one, in its rectangle if there is
  /// one.
  void spreadGrounds() {
    ground_ = colors_;
    std::vector<bool> known(colors_.size());
    for (std::size_t i = 0; i < colors_.size(); ++i) known[i] = isGround_[labels_[i]];
    spread(known, [this](std::size_t a, std::size_t b) { return rectangle_[a] == rectangle_[b]; });
    spread(known, [](std::size_t, std::size_t) { return true; });
  }

  /// Gives the neighbours of pixels whose ground is known the same one, and so on, where they may share it.
  template <typename MayShare>
  void spread(std::vector<bool>& known, MayShare&& mayShare) {
    std::vector<std::size_t> front;
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
          if (known[n] || !mayShare(i, n)) return;
          known[n] = true;
          ground_[n] = ground_[i];
          next.push_back(n);
        });
      front.swap(next);
    }
  }

  static constexpr int coveringBorder = 3;  // Pixels that a ground covers around its box.
  static constexpr std::uint32_t noRectangle = std::numeric_limits<std::uint32_t>::max();

  int width_;
  int height_;
  std::vector<std::uint32_t> colors_;
  std::vector<std::uint32_t> labels_;  // Of each pixel: the number of its surface.
  std::vector<Surface> surfaces_;
  std::uint32_t page_ = 0;  // The colour of the largest surface.
  std::vector<bool> isGround_;
  std::vector<std::uint32_t> grounds_;
  std::vector<bool> isCovered_;  // Of each pixel: whether it is in the box of a ground, or at its border.
  std::vector<std::uint32_t> rectangle_;  // Of each pixel: the ground in whose sharp-edged box it is.
  std::vector<std::uint32_t> ground_;     // Of each pixel: the colour behind it.
};

}  // namespace

GreyBitmap inkOf(const platform::Image& image) { return Colors(image).ink(); }

}  // namespace lumiscan::desktop
