#include "platform/linux/Graphics.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>

#include "platform/linux/Symbols.h"

namespace lumiscan::desktop {

namespace {

QFont::Weight qtWeight(platform::FontWeight weight) {
  switch (weight) {
    case platform::FontWeight::regular:
      return QFont::Normal;
    case platform::FontWeight::medium:
      return QFont::Medium;
    case platform::FontWeight::semibold:
      return QFont::DemiBold;
    case platform::FontWeight::bold:
      return QFont::Bold;
  }
  return QFont::Normal;
}

/// A rounded rectangle whose corners begin to bend half a radius before a circle's would.
QPainterPath continuousCorners(const QRectF& rect, double radius) {
  // In radii from the corner: where a side ends, and the curve from there to the middle of the corner.
  constexpr double sideEnd = 1.528665, bend1 = 1.088493, bend2 = 0.868407, x3 = 0.631494, y3 = 0.074911,
                   x4 = 0.372824, y4 = 0.169060;
  const double r = std::min(radius, std::min(rect.width(), rect.height()) / 2 / sideEnd);
  QPainterPath path;
  // Clockwise from the top side; `in` and `out` lead from the corner along the sides before and after it.
  const auto corner = [&](QPointF at, QPointF in, QPointF out) {
    const auto point = [&](double along, double across) { return at + r * (along * in + across * out); };
    if (path.isEmpty())
      path.moveTo(point(sideEnd, 0));
    else
      path.lineTo(point(sideEnd, 0));
    path.cubicTo(point(bend1, 0), point(bend2, 0), point(x3, y3));
    path.cubicTo(point(x4, y4), point(y4, x4), point(y3, x3));
    path.cubicTo(point(0, bend2), point(0, bend1), point(0, sideEnd));
  };
  const QPointF right(1, 0), down(0, 1);
  corner(rect.topRight(), -right, down);
  corner(rect.bottomRight(), -down, -right);
  corner(rect.bottomLeft(), right, -down);
  corner(rect.topLeft(), down, right);
  path.closeSubpath();
  return path;
}

}  // namespace

QString qtString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QColor qtColor(platform::Color color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QRect qRect(const platform::Rect& pixels) {
  return {static_cast<int>(pixels.minX()), static_cast<int>(pixels.minY()),
          static_cast<int>(pixels.size.width), static_cast<int>(pixels.size.height)};
}

QFont qtFont(const platform::Font& font) {
  using Design = platform::Font::Design;
  // The digits of the usual user-interface fonts have one width as they are.
  QFont made = QFontDatabase::systemFont(font.design == Design::monospaced ? QFontDatabase::FixedFont
                                                                           : QFontDatabase::GeneralFont);
  if (font.design == Design::sansSerif) made.setFamily("sans-serif");
  // A point of ours is a pixel of Qt's device-independent coordinates, not a typographic point.
  made.setPixelSize(qRound(font.size));
  made.setWeight(qtWeight(font.weight));
  return made;
}

platform::Size textSize(std::string_view text, const platform::TextAttributes& attributes) {
  const QFontMetricsF metrics(qtFont(attributes.font));
  return {metrics.horizontalAdvance(qtString(text)), metrics.height()};
}

PainterContext::PainterContext(QPainter& painter, double height) : painter_(painter), height_(height) {
  painter_.setRenderHint(QPainter::Antialiasing);
}

QRectF PainterContext::flipped(const platform::Rect& rect) const {
  return {rect.minX(), height_ - rect.maxY(), rect.size.width, rect.size.height};
}

void PainterContext::drawShapes(const platform::BezierPath& path) {
  for (const auto& segment : path.segments)
    painter_.drawLine(QLineF(flipped(segment.from), flipped(segment.to)));
  for (const auto& rounded : path.roundedRects) {
    if (rounded.continuous) {
      painter_.drawPath(continuousCorners(flipped(rounded.rect), rounded.radius));
      continue;
    }
    // A plain rectangle by a call of its own: a rounded one of radius 0 has softer corners.
    if (rounded.radius > 0)
      painter_.drawRoundedRect(flipped(rounded.rect), rounded.radius, rounded.radius);
    else
      painter_.drawRect(flipped(rounded.rect));
  }
  for (const auto& oval : path.ovals) painter_.drawEllipse(flipped(oval));
}

void PainterContext::stroke(const platform::BezierPath& path, platform::Color color) {
  QPen pen(qtColor(color), path.lineWidth);
  pen.setCapStyle(path.lineCap == platform::LineCap::round ? Qt::RoundCap : Qt::FlatCap);
  pen.setJoinStyle(Qt::MiterJoin);
  painter_.setPen(pen);
  painter_.setBrush(Qt::NoBrush);
  drawShapes(path);
}

void PainterContext::fill(const platform::BezierPath& path, platform::Color color) {
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(qtColor(color));
  drawShapes(path);
}

platform::Size PainterContext::sizeOf(std::string_view text, const platform::TextAttributes& attributes) {
  return textSize(text, attributes);
}

void PainterContext::drawSymbol(std::string_view name, const platform::Rect& rect, platform::Color color) {
  desktop::drawSymbol(painter_, name, flipped(rect), qtColor(color));
}

void PainterContext::draw(std::string_view text, platform::Point origin,
                          const platform::TextAttributes& attributes) {
  const QFont font = qtFont(attributes.font);
  painter_.setFont(font);
  painter_.setPen(qtColor(attributes.foregroundColor));
  const double baseline = origin.y + QFontMetricsF(font).descent();
  painter_.drawText(flipped(platform::Point{origin.x, baseline}), qtString(text));
}

}  // namespace lumiscan::desktop
