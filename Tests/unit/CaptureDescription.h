#pragma once

#include <string>
#include <variant>

#include "capture/CaptureMode.h"
#include "support/TestImages.h"

namespace lumiscan {

/// Which part of a `coordinateImage` the image is: "x,y width×height" in pixels from the top left.
inline std::string describe(const platform::Image& image) {
  const std::uint32_t first = testing::pixel(image, 0, 0);
  return std::to_string(first & 0xFFF) + "," + std::to_string(first >> 12) + " " +
         std::to_string(image.width()) + "×" + std::to_string(image.height());
}

inline std::string describe(const CaptureOutcome& outcome) {
  if (const auto* captured = std::get_if<outcome::Captured>(&outcome)) return describe(captured->image);
  if (std::holds_alternative<outcome::Cancelled>(outcome)) return "cancelled";
  if (std::holds_alternative<outcome::NoScreenAccess>(outcome)) return "noScreenAccess";
  return "noPreviousSelection";
}

}  // namespace lumiscan
