#pragma once

#include <QRegion>

#include "platform/Graphics.h"

namespace lumiscan::desktop {

/// Finds out where a drawing leaves ink, without drawing: what is marked to be drawn again is often far more
/// than that. In points like every context; the answer is in pixels.
class InkContext : public platform::GraphicsContext {
 public:
  /// For a surface that is `height` points high with `scale` pixels to the point.
  InkContext(double height, double scale) : height_(height), scale_(scale) {}

  void stroke(const platform::BezierPath& path, platform::Color color) override;
  void fill(const platform::BezierPath& path, platform::Color color) override;
  void drawSymbol(std::string_view name, const platform::Rect& rect, platform::Color color) override;
  platform::Size sizeOf(std::string_view text, const platform::TextAttributes& attributes) override;
  void draw(std::string_view text, platform::Point origin,
            const platform::TextAttributes& attributes) override;

  /// Every pixel that may have ink; origin at the surface's top left, y downwards.
  const QRegion& region() const { return region_; }

 private:
  void add(const platform::Rect& rect);

  double height_;
  double scale_;
  QRegion region_;
};

}  // namespace lumiscan::desktop
