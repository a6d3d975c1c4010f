#include "platform/linux/recognition/Grounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumiscan::desktop {

namespace {

constexpr int coveringBorder = 3;  // Pixels that a ground covers around its box.
constexpr double leastOwn = 0.45;  // Of a box's pixels are its surface's.

bool isOfBoxSize(const Surface& surface) {
  constexpr int leastHeight = 10;
  constexpr int leastWidth = 14;
  return surface.width() >= leastWidth && surface.height() >= leastHeight &&
         surface.width() >= surface.height() / 2;
}

}  // namespace

Grounds::Grounds(const Surfaces& surfaces)
    : surfaces_(surfaces),
      page_(surfaces.largest()),
      isGround_(surfaces.count()),
      isCovered_(surfaces.pixelCount()),
      rectangles_(surfaces.pixelCount(), noRectangle) {
  std::vector<std::uint32_t> candidates;
  for (std::uint32_t label = 0; label < surfaces.count(); ++label)
    if (label == page_ || isOfBoxSize(surfaces[label])) candidates.push_back(label);
  std::stable_sort(candidates.begin(), candidates.end(), [&](std::uint32_t a, std::uint32_t b) {
    return surfaces[a].boxArea() < surfaces[b].boxArea();
  });
  for (const std::uint32_t label : candidates) {
    if (label != page_ && !isBox(label)) continue;
    isGround_[label] = true;
    labels_.push_back(label);
    cover(surfaces[label]);
    if (surfaces.hasCorners(label, surfaces[label])) fillRectangle(label);
  }
}

/// Marks what a ground covers of the boxes around it, with the border that it may have.
void Grounds::cover(const Surface& ground) {
  const int right = std::min(ground.right + coveringBorder, surfaces_.width() - 1);
  const int bottom = std::min(ground.bottom + coveringBorder, surfaces_.height() - 1);
  for (int y = std::max(ground.top - coveringBorder, 0); y <= bottom; ++y)
    for (int x = std::max(ground.left - coveringBorder, 0); x <= right; ++x)
      isCovered_[surfaces_.index(x, y)] = true;
}

/// The most that the grounds within a surface may cover of it.
double Grounds::mostCoveredOf(const Surface& surface) const {
  double area = 0;
  for (const std::uint32_t label : labels_)
    if (const Surface& ground = surfaces_[label]; ground.isWithin(surface))
      area += (ground.width() + 2.0 * coveringBorder) * (ground.height() + 2.0 * coveringBorder);
  return area;
}

/// All of a rectangle that no other is in has its colour behind it, also where letters reach its edge.
void Grounds::fillRectangle(std::uint32_t label) {
  const Surface& box = surfaces_[label];
  for (int y = box.top; y <= box.bottom; ++y)
    for (int x = box.left; x <= box.right; ++x)
      if (std::uint32_t& rectangle = rectangles_[surfaces_.index(x, y)]; rectangle == noRectangle)
        rectangle = label;
}

/// Precondition: the grounds within the surface are known.
bool Grounds::isBox(std::uint32_t label) const {
  constexpr double mostPointer = 0.3;  // Of the height.
  const Surface& whole = surfaces_[label];
  // In photographs there are many large surfaces of few pixels, which aren't worth a closer look.
  if (static_cast<double>(whole.area) <
      leastOwn * ((1 - mostPointer) * whole.boxArea() - mostCoveredOf(whole)))
    return false;
  const Surface box = withoutPointers(label);
  return isOfBoxSize(box) && box.height() >= (1 - mostPointer) * whole.height() && isFull(label, box);
}

/// Whether a surface fills a box but for what is in it. What grounds cover of it, as the chosen row of a list
/// or the title bar of a window does, says nothing about it.
bool Grounds::isFull(std::uint32_t label, const Surface& box) const {
  constexpr double leastInside = 0.008;  // Of the box's pixels are what is in it.
  double span = 0;
  double inside = 0;
  double enclosed = 0;
  double covered = 0;
  for (int y = box.top; y <= box.bottom; ++y) {
    const Run run = surfaces_.runInRow(label, y);
    span += run.length();
    for (int x = run.first; x <= run.last; ++x) {
      const std::size_t i = surfaces_.index(x, y);
      const std::uint32_t other = surfaces_.labelAt(i);
      if (other == label) continue;
      if (isCovered_[i]) {
        ++covered;
        continue;
      }
      ++inside;
      enclosed += surfaces_[other].isWithin(box);
    }
  }
  const double boxArea = box.boxArea() - covered;
  if (static_cast<double>(box.area) < leastOwn * boxArea) return false;
  // What is around a box may be its border.
  if (covered > 0 && box.area <= static_cast<std::size_t>(2 * coveringBorder) *
                                     static_cast<std::size_t>(box.width() + box.height()))
    return false;
  // What is inside a letter's box is the page around it.
  if ((covered == 0 && inside <= leastInside * boxArea) || enclosed < 0.9 * inside) return false;
  return span >= (1 - mostMissing(label, box)) * box.boxArea();
}

/// The most of a box that may lie outside the first and the last pixel of its rows.
double Grounds::mostMissing(std::uint32_t label, const Surface& box) const {
  constexpr double ofRoundCorners = 0.045;
  // At the ends of a marked part of a line stand letters.
  constexpr double ofLetters = 0.2;
  const double ofRoundEnds = 1 - std::numbers::pi / 4;  // Of the square around a circle lie outside it.
  if (surfaces_.hasCorners(label, box)) return ofLetters;
  return ofRoundCorners + (isPill(label, box) ? ofRoundEnds * box.height() / box.width() : 0);
}

/// Whether a surface may be a box whose ends are half circles: it keeps a distance from its ends to what is
/// in it, which letters of such a shape don't.
bool Grounds::isPill(std::uint32_t label, const Surface& surface) const {
  constexpr double leastPadding = 0.28;  // Heights of the box.
  // Between letters that touch there are such shapes, of the page's colour.
  if (10 * surface.width() < 13 * surface.height() || sameSurface(surface.color, surfaces_[page_].color))
    return false;
  const auto padding = static_cast<int>(std::ceil(leastPadding * surface.height()));
  const auto has = [&](int x, int y) { return surfaces_.labelAt(surfaces_.index(x, y)) == label; };
  for (int y = surface.top + surface.height() / 3; y <= surface.bottom - surface.height() / 3; ++y) {
    const Run run = surfaces_.runInRow(label, y);
    const int inset = std::max(run.first - surface.left, surface.right - run.last);
    if (10 * inset > surface.height() || run.last - run.first < 2 * padding) return false;
    for (int x = 0; x < padding; ++x)
      if (!has(run.first + x, y) || !has(run.last - x, y)) return false;
  }
  return true;
}

/// A surface without the pointer above or below it that a tooltip has.
Surface Grounds::withoutPointers(std::uint32_t label) const {
  Surface surface = surfaces_[label];
  const auto isPointer = [&](int y) { return 2 * surfaces_.runInRow(label, y).length() < surface.width(); };
  while (surface.top < surface.bottom && isPointer(surface.top)) ++surface.top;
  while (surface.bottom > surface.top && isPointer(surface.bottom)) --surface.bottom;
  return surface;
}

}  // namespace lumiscan::desktop
