#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/linux/recognition/Clusters.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// A cluster's ink in a frame of one size for all, standing in it as it stands in its line.
struct GlyphShape {
  static constexpr int width = 24;
  static constexpr int height = 32;
  static constexpr int baseline = 22;      // The row below the feet of letters.
  static constexpr int letterHeight = 12;  // What the line's becomes.

  static constexpr std::size_t inputCount = static_cast<std::size_t>(width) * height + 2;

  /// The frame's pixels row by row, 255 for full ink; then the cluster's width and height, 85 for each
  /// height of a letter: what is too large for the frame is made to fit.
  std::array<std::uint8_t, inputCount> inputs{};
};

GlyphShape shapeOf(const GreyBitmap& ink, const Cluster& cluster, const TextLine& line);

}  // namespace lumiscan::desktop
