#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QRect>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/x11/UnmanagedWindow.h"

namespace lumiscan::desktop {

/// A small window on the X screen that floats above all others and takes neither the focus nor the mouse:
/// clicks go to what is below. Main thread only; on the toolkit's connection.
///
/// With a compositor it is translucent where its picture is. Without one it reads what the screen shows in
/// its place and mixes its picture with that; what lies wholly outside its shape stays the desktop's.
class PanelWindow {
 public:
  /// Not yet shown. `pixels` is on the X screen: origin at its top left, y downwards. `picture` has that
  /// size, 32 bits a pixel with premultiplied alpha. `windowClass` is what other programs know the window by.
  PanelWindow(xcb_connection_t* connection, const QRect& pixels, QImage picture,
              std::string_view windowClass);

  /// Whether a compositor runs that blurs what is behind windows.
  static bool blursBehind(xcb_connection_t* connection);
  /// Asks the compositor to blur what is behind the shape of the picture.
  void blurBehind();
  void showOnTop();
  /// From 0, only what is behind, to 1. Paints.
  void setOpacity(double opacity);
  void paint();

  /// Near the end of the top edge: a pixel of the X screen.
  QPoint groundPixel() const {
    const QRect& pixels = window_.pixels();
    return {pixels.right() - pixels.height() / 2, pixels.top() + pixels.height() / 12};
  }
  /// Its colour, 0xRRGGBB, where the picture is opaque there.
  std::optional<std::uint32_t> groundColor() const;
  xcb_window_t id() const { return window_.id(); }
  bool isTranslucent() const { return window_.isTransparent(); }

 private:
  void letTheMouseThrough();
  /// Without a compositor: what the screen shows here, and the window only where the picture has ink.
  void takeShapeOf(const QImage& picture);
  void readGround();

  xcb_connection_t* connection_;
  QImage picture_;
  QImage ground_;  ///< Null with a compositor.
  double opacity_ = 1;
  x11::UnmanagedWindow window_;
};

}  // namespace lumiscan::desktop
