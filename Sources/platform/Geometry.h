#pragma once

namespace lumiscan::platform {

/// A position. Unit, origin and direction of y are those of the interface that speaks of it: points
/// with y upwards for anything on the screens, pixels with y downwards for anything in an image.
struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle from its origin, the corner with the smallest coordinates, and its size.
struct Rect {
  Point origin;
  Size size;

  double minX() const { return origin.x; }
  double minY() const { return origin.y; }
  double maxX() const { return origin.x + size.width; }
  double maxY() const { return origin.y + size.height; }
  double midX() const { return origin.x + size.width / 2; }
  double midY() const { return origin.y + size.height / 2; }
  friend bool operator==(const Rect&, const Rect&) = default;
};

/// The smallest rectangle with both points on its edge, whichever corners they are.
Rect rectBetween(Point a, Point b);

/// Whether the point is inside: on the edges of the smallest coordinates it is, on those of the
/// largest it is not, so that neighbours never share a point.
bool contains(const Rect& rect, Point point);

/// The rectangle shrunk by `dx` at the left and right and `dy` below and above; negative values grow it.
Rect insetBy(const Rect& rect, double dx, double dy);

/// The common part; a rectangle of size 0 by 0 when there is none.
Rect intersection(const Rect& a, const Rect& b);

/// The smallest rectangle with whole-number origin and size that contains the given one, but for what reaches
/// beyond it by less than `tolerance` on a side. What is not finite stays so.
Rect integral(const Rect& rect, double tolerance = 0);

}  // namespace lumiscan::platform
