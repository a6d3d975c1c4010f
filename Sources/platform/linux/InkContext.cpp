#include "platform/linux/InkContext.h"

#include <cmath>

#include "platform/linux/Graphics.h"

namespace lumiscan::desktop {

using platform::Rect;

void InkContext::add(const Rect& rect) {
  // Outwards to whole pixels, and one more on each side for what smoothing may touch.
  const QPoint topLeft(static_cast<int>(std::floor(rect.minX() * scale_)) - 1,
                       static_cast<int>(std::floor((height_ - rect.maxY()) * scale_)) - 1);
  const QPoint beyond(static_cast<int>(std::ceil(rect.maxX() * scale_)) + 1,
                      static_cast<int>(std::ceil((height_ - rect.minY()) * scale_)) + 1);
  region_ += QRect(topLeft, beyond - QPoint(1, 1));
}

void InkContext::stroke(const platform::BezierPath& path, platform::Color color) {
  if (color.alpha <= 0) return;
  const double reach = path.lineWidth / 2;
  for (const auto& segment : path.segments)
    add(platform::insetBy(platform::rectBetween(segment.from, segment.to), -reach, -reach));
  for (const auto& [rect, radius, continuous] : path.roundedRects) {
    // The four sides, so that what a large outline surrounds counts as free of ink.
    const double side = 2 * reach + (continuous ? 2 : 1) * radius;
    const Rect outer = platform::insetBy(rect, -reach, -reach);
    add({outer.origin, {side, outer.size.height}});
    add({{outer.maxX() - side, outer.minY()}, {side, outer.size.height}});
    add({outer.origin, {outer.size.width, side}});
    add({{outer.minX(), outer.maxY() - side}, {outer.size.width, side}});
  }
  for (const Rect& oval : path.ovals) add(platform::insetBy(oval, -reach, -reach));
}

void InkContext::fill(const platform::BezierPath& path, platform::Color color) {
  if (color.alpha <= 0) return;
  for (const auto& rounded : path.roundedRects) add(rounded.rect);
  for (const Rect& oval : path.ovals) add(oval);
}

void InkContext::drawSymbol(std::string_view, const Rect& rect, platform::Color) { add(rect); }

platform::Size InkContext::sizeOf(std::string_view text, const platform::TextAttributes& attributes) {
  return textSize(text, attributes);
}

void InkContext::draw(std::string_view text, platform::Point origin,
                      const platform::TextAttributes& attributes) {
  // Slanted and accented letters may reach out of their box a little.
  const double reach = attributes.font.size / 4;
  add(platform::insetBy({origin, textSize(text, attributes)}, -reach, -reach));
}

}  // namespace lumiscan::desktop
