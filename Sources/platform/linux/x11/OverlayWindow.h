#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QSize>

#include "platform/Geometry.h"

namespace lumiscan::desktop::x11 {

/// A window on the X screen that no window manager manages: it shows at once and without animation, on every
/// workspace, above docks and full-screen windows, with no entry in taskbars and pagers. It gets its events
/// and its pixels from its owner. Main thread only; on the toolkit's connection.
class OverlayWindow {
 public:
  /// What shows where nothing is written.
  enum class Ground {
    nothing,  ///< The window is transparent there, which takes a compositor.
    asIs,     ///< What the screen showed when the window was shown, until something uncovers the window.
    picture,  ///< What `setGround` gives it.
  };

  /// Not yet shown. `pixels` is on the X screen: origin at its top left, y downwards.
  OverlayWindow(xcb_connection_t* connection, const platform::Rect& pixels, Ground ground,
                xcb_cursor_t cursor);
  ~OverlayWindow();
  OverlayWindow(const OverlayWindow&) = delete;
  OverlayWindow& operator=(const OverlayWindow&) = delete;

  /// `pixmap` is of the window's size and in the depth of the screen. Paints nothing that shows already.
  void setGround(xcb_pixmap_t pixmap);

  /// Shows it above all other windows.
  void showOnTop();

  /// Replaces the pixels at `topLeft` (pixels of the window). 32 bits a pixel: colour with premultiplied
  /// alpha where the window is transparent, the alpha byte ignored where it isn't.
  void write(const QImage& image, QPoint topLeft);

  xcb_window_t id() const { return window_; }
  QPoint origin() const { return origin_; }
  QSize size() const { return size_; }
  bool isTransparent() const { return depth_ == transparentDepth; }

 private:
  static constexpr std::uint8_t transparentDepth = 32;

  void describe();

  xcb_connection_t* connection_;
  QPoint origin_;
  QSize size_;
  std::uint8_t depth_ = 0;
  xcb_window_t window_;
  xcb_gcontext_t gc_;
};

}  // namespace lumiscan::desktop::x11
