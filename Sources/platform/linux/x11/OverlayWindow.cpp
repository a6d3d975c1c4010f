#include "platform/linux/x11/OverlayWindow.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Visual.h"

namespace lumiscan::desktop::x11 {

namespace {

constexpr std::uint32_t wantedEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS |
                                       XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
                                       XCB_EVENT_MASK_KEY_PRESS;

}  // namespace

OverlayWindow::OverlayWindow(xcb_connection_t* connection, const platform::Rect& pixels, Ground ground,
                             xcb_cursor_t cursor)
    : connection_(connection),
      origin_(static_cast<int>(pixels.minX()), static_cast<int>(pixels.minY())),
      size_(static_cast<int>(pixels.size.width), static_cast<int>(pixels.size.height)),
      window_(xcb_generate_id(connection)),
      gc_(xcb_generate_id(connection)) {
  const xcb_screen_t& screen = screenOf(connection);
  xcb_visualid_t visual = screen.root_visual;
  depth_ = screen.root_depth;
  if (const auto withAlpha = visualOfDepth(screen, transparentDepth);
      withAlpha != 0 && ground == Ground::nothing) {
    visual = withAlpha;
    depth_ = transparentDepth;
  }
  const xcb_colormap_t colormap = xcb_generate_id(connection);
  xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
  xcb_create_window_value_list_t values{};
  // Without a background the server leaves on the screen what is there: the window shows without a single
  // pixel being painted.
  values.background_pixmap = XCB_BACK_PIXMAP_NONE;
  values.override_redirect = 1;
  values.event_mask = wantedEvents;
  values.colormap = colormap;
  values.cursor = cursor;
  const std::uint32_t background = ground == Ground::nothing ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP;
  xcb_create_window_aux(connection, depth_, window_, screen.root, static_cast<std::int16_t>(origin_.x()),
                        static_cast<std::int16_t>(origin_.y()), static_cast<std::uint16_t>(size_.width()),
                        static_cast<std::uint16_t>(size_.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                        background | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                            XCB_CW_COLORMAP | XCB_CW_CURSOR,
                        &values);
  xcb_create_gc(connection, gc_, window_, XCB_GC_GRAPHICS_EXPOSURES, std::array<std::uint32_t, 1>{0}.data());
  describe();
}

void OverlayWindow::describe() {
  constexpr std::string_view instanceAndClass("lumiscan\0Lumiscan\0", 18);
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      instanceAndClass.size(), instanceAndClass.data());
  // Kinds of windows to which compositors give no shadow and no animation.
  const std::array<xcb_atom_t, 2> types = {atom(connection_, "_KDE_NET_WM_WINDOW_TYPE_OVERRIDE"),
                                           atom(connection_, "_NET_WM_WINDOW_TYPE_DND")};
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom(connection_, "_NET_WM_WINDOW_TYPE"),
                      XCB_ATOM_ATOM, 32, types.size(), types.data());
}

OverlayWindow::~OverlayWindow() {
  xcb_free_gc(connection_, gc_);
  xcb_destroy_window(connection_, window_);
  xcb_flush(connection_);
}

void OverlayWindow::setGround(xcb_pixmap_t pixmap) {
  xcb_change_window_attributes(connection_, window_, XCB_CW_BACK_PIXMAP, &pixmap);
}

void OverlayWindow::showOnTop() {
  xcb_map_window(connection_, window_);
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  xcb_flush(connection_);
}

void OverlayWindow::write(const QImage& image, QPoint topLeft) {
  // As many rows at a time as one request takes.
  const auto bytesPerRow = static_cast<std::size_t>(image.bytesPerLine());
  constexpr std::size_t header = 64;
  const std::size_t most = std::size_t{4} * xcb_get_maximum_request_length(connection_) - header;
  const int rowsAtATime = static_cast<int>(std::max<std::size_t>(1, most / bytesPerRow));
  for (int y = 0; y < image.height(); y += rowsAtATime) {
    const int rows = std::min(rowsAtATime, image.height() - y);
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, gc_,
                  static_cast<std::uint16_t>(image.width()), static_cast<std::uint16_t>(rows),
                  static_cast<std::int16_t>(topLeft.x()), static_cast<std::int16_t>(topLeft.y() + y), 0,
                  depth_, static_cast<std::uint32_t>(bytesPerRow * static_cast<std::size_t>(rows)),
                  image.constScanLine(y));
  }
}

}  // namespace lumiscan::desktop::x11
