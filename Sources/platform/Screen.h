#pragma once

#include <cstdint>

#include "platform/Geometry.h"

namespace lumiscan::platform {

/// The number of a display: the same for the same output across restarts of the program.
using DisplayID = std::uint32_t;

/// What a screen was when it was asked for; a plain value that doesn't follow later changes.
struct Screen {
  DisplayID displayID = 0;
  Rect frame;         ///< Points, global screen space (origin bottom left of the primary screen, y up).
  Rect visibleFrame;  ///< The part of `frame` that panels and docks leave free.
  double backingScaleFactor = 1;  ///< Pixels per point.
  friend bool operator==(const Screen&, const Screen&) = default;
};

}  // namespace lumiscan::platform
