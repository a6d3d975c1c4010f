#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QRect>
#include <cstdint>
#include <string_view>
#include <vector>

namespace lumiscan::desktop::x11 {

/// A window on the X screen that no window manager manages and the toolkit knows nothing of: it shows at once
/// and without animation, on every workspace, above docks and full-screen windows, with no entry in taskbars
/// and pagers. It gets its events and its pixels from its owner. Main thread only; on the toolkit's
/// connection.
class UnmanagedWindow {
 public:
  struct Options {
    QRect pixels;              ///< On the X screen: origin at its top left, y downwards.
    bool wantsAlpha = false;   ///< To be transparent where nothing is written, which takes a compositor.
    std::uint32_t events = 0;  ///< A mask of the server's events.
    xcb_cursor_t cursor = XCB_CURSOR_NONE;
    /// What other programs know the window by, and the kinds of windows that it is, the best known first.
    std::string_view instanceName, className;
    std::vector<std::string_view> types;
  };

  /// Not yet shown.
  UnmanagedWindow(xcb_connection_t* connection, const Options& options);
  ~UnmanagedWindow();
  UnmanagedWindow(const UnmanagedWindow&) = delete;
  UnmanagedWindow& operator=(const UnmanagedWindow&) = delete;

  /// `pixmap`, of the window's size and in the depth of the screen, shows where nothing is written. Paints
  /// nothing that shows already.
  void setBackground(xcb_pixmap_t pixmap);

  /// Shows it above all other windows.
  void showOnTop();

  /// Replaces the pixels at `topLeft` (pixels of the window). 32 bits a pixel: colour with premultiplied
  /// alpha where the window is transparent, the alpha byte ignored where it isn't. The owner flushes.
  void write(const QImage& image, QPoint topLeft);

  xcb_window_t id() const { return window_; }
  /// Of the X screen.
  const QRect& pixels() const { return pixels_; }
  /// Whether it got the alpha channel that it wanted.
  bool isTransparent() const { return depth_ == transparentDepth; }

 private:
  static constexpr std::uint8_t transparentDepth = 32;

  void create(const Options& options);
  void describe(const Options& options);

  xcb_connection_t* connection_;
  QRect pixels_;
  std::uint8_t depth_ = 0;
  xcb_window_t window_;
  xcb_gcontext_t gc_;
};

}  // namespace lumiscan::desktop::x11
