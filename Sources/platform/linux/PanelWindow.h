#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QRect>
#include <cstdint>
#include <optional>
#include <string>

namespace lumiscan::desktop {

/// A small window on the X screen that floats above all others, on every workspace, and takes neither the
/// focus nor the mouse: no window manager manages it, and clicks go to what is below. Main thread only; on
/// the toolkit's connection.
///
/// With a compositor it is translucent where its picture is. Without one it reads what the screen shows in
/// its place and mixes its picture with that; what lies wholly outside its shape stays the desktop's.
class PanelWindow {
 public:
  /// Not yet shown. `pixels` is on the X screen: origin at its top left, y downwards. `picture` has that
  /// size, 32 bits a pixel with premultiplied alpha.
  /// `windowClass` is what other programs know the window by.
  PanelWindow(xcb_connection_t* connection, const QRect& pixels, QImage picture,
              const std::string& windowClass);
  ~PanelWindow();
  PanelWindow(const PanelWindow&) = delete;
  PanelWindow& operator=(const PanelWindow&) = delete;

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
    return {pixels_.right() - pixels_.height() / 2, pixels_.top() + pixels_.height() / 12};
  }
  /// Its colour, 0xRRGGBB, where the picture is opaque there.
  std::optional<std::uint32_t> groundColor() const;
  xcb_window_t id() const { return window_; }
  bool isTranslucent() const { return depth_ == translucentDepth; }

 private:
  static constexpr std::uint8_t translucentDepth = 32;

  void create(const xcb_screen_t& screen);
  void describe(const std::string& windowClass);
  void letTheMouseThrough();
  /// Without a compositor: what the screen shows here, and the window only where the picture has ink.
  void takeShapeOf(const QImage& picture);
  void readGround(xcb_window_t root);
  void write(const QImage& image);

  xcb_connection_t* connection_;
  QRect pixels_;
  QImage picture_;
  QImage ground_;  ///< Null with a compositor.
  double opacity_ = 1;
  std::uint8_t depth_ = 0;
  xcb_window_t window_;
  xcb_gcontext_t gc_;
};

}  // namespace lumiscan::desktop
