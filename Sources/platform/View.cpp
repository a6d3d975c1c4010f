#include "platform/View.h"

#include "platform/Window.h"

namespace lumiscan::platform {

Point View::convertFromWindow(Point point) const {
  return {point.x - frame_.origin.x, point.y - frame_.origin.y};
}

void View::setNeedsDisplay(const Rect& rect) {
  if (!window_) return;
  window_->invalidate({{rect.origin.x + frame_.origin.x, rect.origin.y + frame_.origin.y}, rect.size});
}

void View::keyDown(const KeyEvent& event) {
  if (event.keyCode == keyCodePeriod && (event.modifierFlags & modifierCommand)) cancelOperation();
}

}  // namespace lumiscan::platform
