#include "platform/Window.h"

#include <algorithm>

#include "platform/Desktop.h"
#include "platform/Dispatch.h"
#include "platform/Display.h"

namespace lumiscan::platform {

Window::Window(const Rect& contentRect, unsigned styleMask) : frame_(contentRect) {
  attributes_.styleMask = styleMask;
}

Window::~Window() = default;

void Window::setContentView(std::unique_ptr<View> view) {
  contentView_ = std::move(view);
  if (!contentView_) return;
  contentView_->window_ = this;
  contentView_->updateTrackingAreas();
  contentView_->discardCursorRects();
  contentView_->resetCursorRects();
}

Point Window::convertPointFromScreen(Point point) const {
  return {point.x - frame_.origin.x, point.y - frame_.origin.y};
}

void Window::center() {
  const auto screens = Displays::shared().screens();
  if (screens.empty()) return;
  const Point mouse = MouseEvent::mouseLocation();
  const auto withMouse =
      std::ranges::find_if(screens, [mouse](const Screen& screen) { return contains(screen.frame, mouse); });
  const Rect& area = (withMouse == screens.end() ? screens.front() : *withMouse).visibleFrame;
  frame_.origin = {area.midX() - frame_.size.width / 2,
                   std::min(area.midY() + frame_.size.height / 2, area.maxY()) - frame_.size.height};
}

void Window::orderFrontRegardless() {
  MainQueue::assertCurrent();
  if (!peer_) peer_ = Desktop::current().makeWindowPeer(*this);
  visible_ = true;
  peer_->orderFront();
}

void Window::makeKey() {
  if (visible_ && canBecomeKey()) peer_->makeKey();
}

void Window::makeKeyAndOrderFront() {
  orderFrontRegardless();
  makeKey();
}

void Window::orderOut() {
  MainQueue::assertCurrent();
  if (!visible_) return;
  visible_ = false;
  peer_->orderOut();
}

void Window::animateAlphaValue(double alpha, double seconds, const std::function<void()>& completion) {
  MainQueue::assertCurrent();
  if (!visible_) return;
  attributes_.alphaValue = alpha;
  peer_->animateAlpha(alpha, seconds, completion);
}

bool Window::isKeyWindow() const { return visible_ && peer_->isKey(); }

void Window::invalidate(const Rect& rect) {
  if (visible_) peer_->invalidate(rect);
}

void Window::sendMouseEvent(MousePhase phase, const MouseEvent& event) {
  const auto keepAlive = shared_from_this();
  View* view = contentView_.get();
  if (!view) return;
  switch (phase) {
    case MousePhase::moved:
      for (const TrackingArea& area : view->trackingAreas()) {
        if ((area.options & TrackingArea::mouseMoved) &&
            contains(area.rect, view->convertFromWindow(event.locationInWindow))) {
          view->mouseMoved(event);
          break;
        }
      }
      break;
    case MousePhase::down:
      view->mouseDown(event);
      break;
    case MousePhase::dragged:
      view->mouseDragged(event);
      break;
    case MousePhase::up:
      view->mouseUp(event);
      break;
  }
}

void Window::sendKeyDown(const KeyEvent& event) {
  const auto keepAlive = shared_from_this();
  if (contentView_ && contentView_->acceptsFirstResponder()) contentView_->keyDown(event);
}

void Window::sendCancel() {
  const auto keepAlive = shared_from_this();
  if (contentView_) contentView_->cancelOperation();
}

void Window::draw(GraphicsContext& context, const Rect& dirtyRect) {
  if (attributes_.backgroundColor.alpha > 0)
    context.fill(BezierPath::rect(dirtyRect), attributes_.backgroundColor);
  if (contentView_) contentView_->draw(context, dirtyRect);
}

}  // namespace lumiscan::platform
