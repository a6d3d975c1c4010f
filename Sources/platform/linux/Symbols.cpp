#include "platform/linux/Symbols.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <initializer_list>

namespace lumiscan::desktop {

namespace {

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

QPainterPath roundedRect(const QRectF& rect, double radius) {
  QPainterPath path;
  path.addRoundedRect(rect, radius, radius);
  return path;
}

}  // namespace

QPainterPath textViewfinder(int wholeSide) {
  const int stroke = std::max(2, qRound(wholeSide * 0.085));
  // As odd or even as the stroke, so that a line has room in the middle.
  const int side = wholeSide - (wholeSide - stroke) % 2;
  const auto part = [side](double fraction) { return qRound(side * fraction); };

  const int margin = std::max(1, part(0.06)), radius = part(0.14), arm = part(0.25);
  const QRectF outer(margin, margin, side - 2 * margin, side - 2 * margin);
  const QRectF inner = outer.adjusted(stroke, stroke, -stroke, -stroke);
  QPainterPath beside;
  beside.addRect(outer.adjusted(arm, 0, -arm, 0));
  beside.addRect(outer.adjusted(0, arm, 0, -arm));
  beside.setFillRule(Qt::WindingFill);
  QPainterPath outline = roundedRect(outer, radius)
                             .subtracted(roundedRect(inner, std::max(0, radius - stroke)))
                             .subtracted(beside);

  const int left = part(0.27), pitch = part(0.165), width = side - 2 * left;
  int top = (side - stroke) / 2 - pitch;
  for (const int length : {width, width, qRound(width * 0.6)}) {
    outline.addPath(roundedRect(QRectF(left, top, length, stroke), stroke / 2.0));
    top += pitch;
  }
  return outline;
}

std::optional<QPainterPath> symbolOutline(std::string_view name) {
  if (name == "checkmark.circle.fill") return checkmarkCircle();
  if (name == "exclamationmark.triangle.fill") return exclamationmarkTriangle();
  if (name == "text.magnifyingglass") return magnifiedText();
  if (name == "text.viewfinder") return textViewfinder(symbolSide);
  return std::nullopt;
}

void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color) {
  const auto outline = symbolOutline(name);
  if (!outline) return;
  const double scale = std::min(rect.width(), rect.height()) / symbolSide;
  painter.save();
  painter.translate(rect.center());
  painter.scale(scale, scale);
  painter.translate(-symbolSide / 2.0, -symbolSide / 2.0);
  painter.fillPath(*outline, color);
  painter.restore();
}

}  // namespace lumiscan::desktop
