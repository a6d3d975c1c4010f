#include "capture/SelectionView.h"

#include <string>

#include "capture/CaptureLog.h"
#include "capture/SelectionWindow.h"

namespace lumiscan {

namespace {

using platform::BezierPath;
using platform::Color;
using platform::Point;
using platform::Rect;

constexpr double smallestConfirmedSide = 6;
constexpr double smallestDrawnSide = 1;
constexpr double crosshairBoxSide = 28;

std::string wholeNumber(double value) { return std::to_string(static_cast<long>(value)); }

Rect crosshairBox(Point point) {
  return {{point.x - crosshairBoxSide / 2, point.y - crosshairBoxSide / 2},
          {crosshairBoxSide, crosshairBoxSide}};
}

}  // namespace

void SelectionView::updateTrackingAreas() {
  removeAllTrackingAreas();
  addTrackingArea({bounds(), platform::TrackingArea::mouseEnteredAndExited |
                                 platform::TrackingArea::mouseMoved | platform::TrackingArea::activeAlways});
}

void SelectionView::resetCursorRects() { addCursorRect({bounds(), platform::CursorShape::crosshair}); }

void SelectionView::mouseMoved(const platform::MouseEvent& event) {
  const Point point = convertFromWindow(event.locationInWindow);
  if (crosshairPoint_) setNeedsDisplay(crosshairBox(*crosshairPoint_));
  crosshairPoint_ = point;
  setNeedsDisplay(crosshairBox(point));
}

void SelectionView::mouseDown(const platform::MouseEvent& event) {
  captureLog().info("view mouseDown");
  const Point point = convertFromWindow(event.locationInWindow);
  startPoint_ = point;
  currentPoint_ = point;
  setNeedsDisplay();
}

void SelectionView::mouseDragged(const platform::MouseEvent& event) {
  currentPoint_ = convertFromWindow(event.locationInWindow);
  setNeedsDisplay();
}

void SelectionView::mouseUp(const platform::MouseEvent& event) {
  currentPoint_ = convertFromWindow(event.locationInWindow);
  const auto rect = selection();
  SelectionWindow* const overlay = selectionWindow();
  captureLog().info(
      std::string("view mouseUp window=") + (overlay ? "true" : "false") + " rect=" +
      (rect ? wholeNumber(rect->size.width) + "x" + wholeNumber(rect->size.height) : std::string("nil")));
  if (!overlay) return;
  if (rect && rect->size.width >= smallestConfirmedSide && rect->size.height >= smallestConfirmedSide)
    overlay->confirmSelection(*rect);
  else
    overlay->cancel();
}

void SelectionView::keyDown(const platform::KeyEvent& event) {
  if (event.keyCode == platform::keyCodeEscape)
    cancelOperation();
  else
    View::keyDown(event);
}

void SelectionView::cancelOperation() {
  if (SelectionWindow* const overlay = selectionWindow()) overlay->cancel();
}

SelectionWindow* SelectionView::selectionWindow() const { return dynamic_cast<SelectionWindow*>(window()); }

std::optional<Rect> SelectionView::selection() const {
  if (!startPoint_ || !currentPoint_) return std::nullopt;
  return platform::rectBetween(*startPoint_, *currentPoint_);
}

void SelectionView::draw(platform::GraphicsContext& context, const Rect&) {
  const auto rect = selection();
  if (rect && rect->size.width > smallestDrawnSide && rect->size.height > smallestDrawnSide) {
    drawSelection(context, *rect);
    return;
  }
  if (!crosshairPoint_) {
    if (!window()) return;
    crosshairPoint_ =
        convertFromWindow(window()->convertPointFromScreen(platform::MouseEvent::mouseLocation()));
  }
  drawCrosshair(context, *crosshairPoint_);
}

void SelectionView::drawSelection(platform::GraphicsContext& context, const Rect& rect) const {
  BezierPath outer = BezierPath::rect(platform::insetBy(rect, -2, -2));
  outer.lineWidth = 3;
  context.stroke(outer, Color::black().withAlpha(0.55));
  BezierPath inner = BezierPath::rect(platform::insetBy(rect, -0.75, -0.75));
  inner.lineWidth = 1.5;
  context.stroke(inner, Color::white());
  drawSizeBadge(context, rect);
}

void SelectionView::drawSizeBadge(platform::GraphicsContext& context, const Rect& rect) const {
  constexpr double gapBelow = 10;
  constexpr double gapAbove = 8;
  constexpr double lowestTextOrigin = 4;
  const std::string text = wholeNumber(rect.size.width) + " × " + wholeNumber(rect.size.height);
  const platform::TextAttributes attributes{
      {platform::Font::Design::systemMonospacedDigits, 11, platform::FontWeight::medium}, Color::white()};
  const platform::Size size = context.sizeOf(text, attributes);
  Point origin{rect.minX(), rect.minY() - size.height - gapBelow};
  if (origin.y < lowestTextOrigin) origin.y = rect.maxY() + gapAbove;
  const Rect background{{origin.x - 6, origin.y - 3}, {size.width + 12, size.height + 6}};
  context.fill(BezierPath::roundedRect(background, 5), Color::black().withAlpha(0.7));
  context.draw(text, origin, attributes);
}

void SelectionView::drawCrosshair(platform::GraphicsContext& context, Point point) const {
  constexpr double near = 2.5;
  constexpr double far = 8;
  BezierPath arms;
  arms.segments = {{{point.x - far, point.y}, {point.x - near, point.y}},
                   {{point.x + near, point.y}, {point.x + far, point.y}},
                   {{point.x, point.y - far}, {point.x, point.y - near}},
                   {{point.x, point.y + near}, {point.x, point.y + far}}};
  arms.lineCap = platform::LineCap::round;
  arms.lineWidth = 2;
  context.stroke(arms, Color::black().withAlpha(0.5));
  arms.lineWidth = 1;
  context.stroke(arms, Color::white());
  context.fill(BezierPath::oval({{point.x - 1, point.y - 1}, {2, 2}}), Color::white());
}

}  // namespace lumiscan
