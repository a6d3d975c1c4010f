#include "platform/Graphics.h"

namespace lumiscan::platform {

BezierPath BezierPath::rect(const Rect& rect) { return roundedRect(rect, 0); }

BezierPath BezierPath::roundedRect(const Rect& rect, double radius) {
  BezierPath path;
  path.roundedRects.push_back({rect, radius});
  return path;
}

BezierPath BezierPath::oval(const Rect& rect) {
  BezierPath path;
  path.ovals.push_back(rect);
  return path;
}

}  // namespace lumiscan::platform
