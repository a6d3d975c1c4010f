#pragma once

#include <optional>

#include "platform/View.h"

namespace lumiscan {

class SelectionWindow;

/// The content of an overlay: the crosshair that follows the mouse and, while dragging, the outline of the
/// rectangle with a badge of its size in points. Everything else stays transparent. Main thread only.
class SelectionView : public platform::View {
 public:
  explicit SelectionView(const platform::Rect& frame) : View(frame) {}

  bool acceptsFirstResponder() const override { return true; }
  bool mouseDownCanMoveWindow() const override { return false; }
  void updateTrackingAreas() override;
  void resetCursorRects() override;

  void mouseMoved(const platform::MouseEvent& event) override;
  void mouseDown(const platform::MouseEvent& event) override;
  void mouseDragged(const platform::MouseEvent& event) override;
  /// Confirms a rectangle of at least 6 by 6 points; anything smaller, a click too, cancels.
  void mouseUp(const platform::MouseEvent& event) override;
  /// Escape cancels.
  void keyDown(const platform::KeyEvent& event) override;
  void cancelOperation() override;

  void draw(platform::GraphicsContext& context, const platform::Rect& dirtyRect) override;

 private:
  /// The window, if it is an overlay.
  SelectionWindow* selectionWindow() const;
  std::optional<platform::Rect> selection() const;
  void drawSelection(platform::GraphicsContext& context, const platform::Rect& rect) const;
  void drawSizeBadge(platform::GraphicsContext& context, const platform::Rect& rect) const;
  void drawCrosshair(platform::GraphicsContext& context, platform::Point point) const;

  // View coordinates. Absent until the mouse went down, moved, or the first drawing asked.
  std::optional<platform::Point> startPoint_;
  std::optional<platform::Point> currentPoint_;
  std::optional<platform::Point> crosshairPoint_;
};

}  // namespace lumiscan
