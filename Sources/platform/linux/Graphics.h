#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <QString>
#include <string_view>

#include "platform/Graphics.h"

namespace lumiscan::desktop {

/// From UTF-8.
QString qtString(std::string_view text);
QColor qtColor(platform::Color color);
QFont qtFont(const platform::Font& font);
/// Precondition: whole numbers, as pixels are.
QRect qRect(const platform::Rect& pixels);
/// The size of one line of text, as `platform::GraphicsContext::sizeOf` says.
platform::Size textSize(std::string_view text, const platform::TextAttributes& attributes);

/// Draws with a painter, whose y grows downwards, on a surface that is `height` points high.
class PainterContext : public platform::GraphicsContext {
 public:
  /// The painter outlives the context.
  PainterContext(QPainter& painter, double height);

  void stroke(const platform::BezierPath& path, platform::Color color) override;
  void fill(const platform::BezierPath& path, platform::Color color) override;
  void drawSymbol(std::string_view name, const platform::Rect& rect, platform::Color color) override;
  platform::Size sizeOf(std::string_view text, const platform::TextAttributes& attributes) override;
  void draw(std::string_view text, platform::Point origin,
            const platform::TextAttributes& attributes) override;

 private:
  QPointF flipped(platform::Point point) const { return {point.x, height_ - point.y}; }
  QRectF flipped(const platform::Rect& rect) const;
  void drawShapes(const platform::BezierPath& path);

  QPainter& painter_;
  double height_;
};

}  // namespace lumiscan::desktop
