#include "platform/linux/Symbols.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <initializer_list>

namespace lumiscan::desktop {

namespace {

constexpr double side = 20;  // Of the square in which symbols are drawn.

/// A line along the points, with round ends and corners.
QPainterPath line(std::initializer_list<QPointF> points, double width) {
  QPainterPathStroker pen;
  pen.setWidth(width);
  pen.setCapStyle(Qt::RoundCap);
  pen.setJoinStyle(Qt::RoundJoin);
  QPainterPath path;
  path.addPolygon(QPolygonF(QList<QPointF>(points)));
  return pen.createStroke(path).simplified();
}

QPainterPath disc(QPointF center, double radius) {
  QPainterPath path;
  path.addEllipse(center, radius, radius);
  return path;
}

QPainterPath checkmarkCircle() {
  return disc({10, 10}, 9.4).subtracted(line({{5.9, 10.5}, {8.7, 13.4}, {14.1, 6.8}}, 1.9));
}

QPainterPath exclamationmarkTriangle() {
  constexpr double rounding = 3.4;  // The diameter of the corners.
  const std::initializer_list<QPointF> corners = {{10, 2.9}, {18, 16.6}, {2, 16.6}, {10, 2.9}};
  QPainterPath triangle;
  triangle.addPolygon(QPolygonF(QList<QPointF>(corners)));
  return triangle.united(line(corners, rounding))
      .subtracted(line({{10, 7.2}, {10, 11.3}}, 1.9))
      .subtracted(disc({10, 14.6}, 1.2));
}

QPainterPath magnifiedText() {
  constexpr double stroke = 1.7;
  const QPainterPath lens = disc({12.3, 11.6}, 5).subtracted(disc({12.3, 11.6}, 5 - stroke));
  return line({{1.6, 2.6}, {18.4, 2.6}}, stroke)
      .united(line({{1.6, 7.2}, {5.4, 7.2}}, stroke))
      .united(line({{1.6, 11.8}, {4.4, 11.8}}, stroke))
      .united(line({{1.6, 16.4}, {7.4, 16.4}}, stroke))
      .united(lens)
      .united(line({{16, 15.3}, {18.6, 17.9}}, 2.1));
}

QPainterPath viewfinder() {
  constexpr double stroke = 1.7, near = 1.6, far = side - near, length = 4.2, radius = 2.4;
  QPainterPath corner;
  corner.moveTo(near, near + length);
  corner.lineTo(near, near + radius);
  corner.quadTo(near, near, near + radius, near);
  corner.lineTo(near + length, near);
  QPainterPathStroker pen;
  pen.setWidth(stroke);
  pen.setCapStyle(Qt::RoundCap);
  const QPainterPath topLeft = pen.createStroke(corner).simplified();
  const QTransform across(-1, 0, 0, 1, near + far, 0);
  const QTransform down(1, 0, 0, -1, 0, near + far);
  return topLeft.united(across.map(topLeft)).united(down.map(topLeft)).united(across.map(down.map(topLeft)));
}

QPainterPath textInViewfinder() {
  constexpr double stroke = 1.6;
  return viewfinder()
      .united(line({{5.4, 6.7}, {14.6, 6.7}}, stroke))
      .united(line({{5.4, 10}, {14.6, 10}}, stroke))
      .united(line({{5.4, 13.3}, {11, 13.3}}, stroke));
}

}  // namespace

std::optional<QPainterPath> symbolOutline(std::string_view name) {
  if (name == "checkmark.circle.fill") return checkmarkCircle();
  if (name == "exclamationmark.triangle.fill") return exclamationmarkTriangle();
  if (name == "text.magnifyingglass") return magnifiedText();
  if (name == "text.viewfinder") return textInViewfinder();
  return std::nullopt;
}

void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color) {
  const auto outline = symbolOutline(name);
  if (!outline) return;
  const double scale = std::min(rect.width(), rect.height()) / side;
  painter.save();
  painter.translate(rect.center());
  painter.scale(scale, scale);
  painter.translate(-side / 2, -side / 2);
  painter.fillPath(*outline, color);
  painter.restore();
}

}  // namespace lumiscan::desktop
