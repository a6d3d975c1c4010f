#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "platform/linux/recognition/Surfaces.h"

namespace lumiscan::desktop {

/// The surfaces of an image that text stands on: the largest, and those that are boxes, round or not, with
/// something in them. Keeps a reference to the surfaces.
class Grounds {
 public:
  explicit Grounds(const Surfaces& surfaces);

  static constexpr std::uint32_t noRectangle = std::numeric_limits<std::uint32_t>::max();

  /// Their labels, from the inside to the outside.
  const std::vector<std::uint32_t>& labels() const { return labels_; }
  bool isGround(std::uint32_t label) const { return isGround_[label]; }
  /// Of a pixel: the ground in whose sharp-edged box it is, or `noRectangle`.
  std::uint32_t rectangleAt(std::size_t pixel) const { return rectangles_[pixel]; }

 private:
  void cover(const Surface& ground);
  double mostCoveredOf(const Surface& surface) const;
  void fillRectangle(std::uint32_t label);
  bool isBox(std::uint32_t label) const;
  bool isFull(std::uint32_t label, const Surface& box) const;
  double mostMissing(std::uint32_t label, const Surface& box) const;
  bool isPill(std::uint32_t label, const Surface& surface) const;
  Surface withoutPointers(std::uint32_t label) const;

  const Surfaces& surfaces_;
  std::uint32_t page_;  // The largest surface.
  std::vector<std::uint32_t> labels_;
  std::vector<bool> isGround_;
  std::vector<bool> isCovered_;  // Of each pixel: whether it is in the box of a ground, or at its border.
  std::vector<std::uint32_t> rectangles_;
};

}  // namespace lumiscan::desktop
