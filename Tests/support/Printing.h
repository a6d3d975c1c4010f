#pragma once

#include <ostream>

#include "platform/Geometry.h"
#include "platform/Graphics.h"

// How values read in the messages of failing tests.

namespace lumiscan::platform {

inline std::ostream& operator<<(std::ostream& stream, const Point& point) {
  return stream << '(' << point.x << ", " << point.y << ')';
}
inline std::ostream& operator<<(std::ostream& stream, const Size& size) {
  return stream << size.width << "×" << size.height;
}
inline std::ostream& operator<<(std::ostream& stream, const Rect& rect) {
  return stream << rect.size << " at " << rect.origin;
}
inline std::ostream& operator<<(std::ostream& stream, const Color& color) {
  return stream << "rgba(" << color.red << ", " << color.green << ", " << color.blue << ", " << color.alpha
                << ')';
}

}  // namespace lumiscan::platform
