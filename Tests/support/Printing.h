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
inline std::ostream& operator<<(std::ostream& stream, const Font& font) {
  constexpr const char* designs[] = {"system", "digits", "monospaced", "sans"};
  constexpr const char* weights[] = {"regular", "medium", "semibold", "bold"};
  return stream << designs[static_cast<int>(font.design)] << ' ' << font.size << ' '
                << weights[static_cast<int>(font.weight)];
}
inline std::ostream& operator<<(std::ostream& stream, const BezierPath& path) {
  if (path.lineCap == LineCap::round) stream << "round";
  for (const auto& [from, to] : path.segments) stream << ' ' << from << '-' << to;
  for (const auto& [rect, radius, continuous] : path.roundedRects)
    stream << rect << " radius " << radius << (continuous ? " continuous" : "");
  for (const Rect& oval : path.ovals) stream << "oval " << oval;
  return stream;
}

}  // namespace lumiscan::platform
