#pragma once

#include <vector>

#include "platform/Cursor.h"
#include "platform/Event.h"
#include "platform/Geometry.h"
#include "platform/Graphics.h"

namespace lumiscan::platform {

class Window;

/// A part of a view in which the mouse is followed.
struct TrackingArea {
  enum Options : unsigned { mouseEnteredAndExited = 0x01, mouseMoved = 0x02, activeAlways = 0x80 };
  Rect rect;  ///< View coordinates.
  unsigned options = 0;
};

/// A part of a view over which the mouse shows a cursor of its own.
struct CursorRect {
  Rect rect;  ///< View coordinates.
  CursorShape cursor = CursorShape::arrow;
};

/// The content of a window: draws itself and receives the mouse and the keys. In points, origin at the
/// bottom left of the view, y upwards. Main thread only. The window owns its view.
class View {
 public:
  /// `frame` is in window coordinates.
  explicit View(const Rect& frame) : frame_(frame) {}
  virtual ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  const Rect& frame() const { return frame_; }
  /// Takes effect when the view is next drawn.
  void setFrame(const Rect& frame) { frame_ = frame; }
  Rect bounds() const { return {{0, 0}, frame_.size}; }
  /// The window that shows the view, or null.
  Window* window() const { return window_; }
  Point convertFromWindow(Point point) const;

  /// Marks what must be drawn again; several marks are drawn together after the current event.
  void setNeedsDisplay() { setNeedsDisplay(bounds()); }
  void setNeedsDisplay(const Rect& rect);

  void addTrackingArea(const TrackingArea& area) { trackingAreas_.push_back(area); }
  void removeAllTrackingAreas() { trackingAreas_.clear(); }
  const std::vector<TrackingArea>& trackingAreas() const { return trackingAreas_; }
  void addCursorRect(const CursorRect& rect) { cursorRects_.push_back(rect); }
  void discardCursorRects() { cursorRects_.clear(); }
  const std::vector<CursorRect>& cursorRects() const { return cursorRects_; }

  /// Whether the view takes the window's keys.
  virtual bool acceptsFirstResponder() const { return false; }
  /// Whether pressing the mouse here drags the window about.
  virtual bool mouseDownCanMoveWindow() const { return true; }
  /// Called when the view gets a window; sets the tracking areas.
  virtual void updateTrackingAreas() {}
  /// Called when the view gets a window; adds the cursor rectangles.
  virtual void resetCursorRects() {}

  virtual void mouseMoved(const MouseEvent&) {}
  virtual void mouseDown(const MouseEvent&) {}
  virtual void mouseDragged(const MouseEvent&) {}
  virtual void mouseUp(const MouseEvent&) {}
  /// The default handling knows the desktop's cancel command, Command and the full stop, and calls
  /// `cancelOperation` for it.
  virtual void keyDown(const KeyEvent& event);
  virtual void cancelOperation() {}

  /// Draws the view; `dirtyRect` is the part that is needed. What isn't drawn stays transparent.
  virtual void draw(GraphicsContext&, const Rect& /*dirtyRect*/) {}

 private:
  friend class Window;

  Rect frame_;
  Window* window_ = nullptr;
  std::vector<TrackingArea> trackingAreas_;
  std::vector<CursorRect> cursorRects_;
};

}  // namespace lumiscan::platform
