#include "platform/Geometry.h"

#include <algorithm>
#include <cmath>

namespace lumiscan::platform {

Rect rectBetween(Point a, Point b) {
  return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::abs(a.x - b.x), std::abs(a.y - b.y)}};
}

bool contains(const Rect& rect, Point point) {
  return point.x >= rect.minX() && point.x < rect.maxX() && point.y >= rect.minY() && point.y < rect.maxY();
}

Rect insetBy(const Rect& rect, double dx, double dy) {
  return {{rect.origin.x + dx, rect.origin.y + dy}, {rect.size.width - 2 * dx, rect.size.height - 2 * dy}};
}

Rect intersection(const Rect& a, const Rect& b) {
  const double left = std::max(a.minX(), b.minX());
  const double low = std::max(a.minY(), b.minY());
  const double width = std::min(a.maxX(), b.maxX()) - left;
  const double height = std::min(a.maxY(), b.maxY()) - low;
  if (!(width > 0 && height > 0)) return {};
  return {{left, low}, {width, height}};
}

Rect integral(const Rect& rect, double tolerance) {
  const double left = std::floor(rect.minX() + tolerance);
  const double low = std::floor(rect.minY() + tolerance);
  return {{left, low}, {std::ceil(rect.maxX() - tolerance) - left, std::ceil(rect.maxY() - tolerance) - low}};
}

}  // namespace lumiscan::platform
