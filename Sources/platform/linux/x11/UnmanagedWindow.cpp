#include "platform/linux/x11/UnmanagedWindow.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Visual.h"

namespace lumiscan::desktop::x11 {

UnmanagedWindow::UnmanagedWindow(xcb_connection_t* connection, const Options& options)
    : connection_(connection),
      pixels_(options.pixels),
      window_(xcb_generate_id(connection)),
      gc_(xcb_generate_id(connection)) {
  create(options);
  describe(options);
}

UnmanagedWindow::~UnmanagedWindow() {
  xcb_free_gc(connection_, gc_);
  xcb_destroy_window(connection_, window_);
  xcb_flush(connection_);
}

void UnmanagedWindow::create(const Options& options) {
  const xcb_screen_t& screen = screenOf(connection_);
  xcb_visualid_t visual = screen.root_visual;
  depth_ = screen.root_depth;
  if (const auto withAlpha = visualOfDepth(screen, transparentDepth); withAlpha != 0 && options.wantsAlpha) {
    visual = withAlpha;
    depth_ = transparentDepth;
  }
  const xcb_colormap_t colormap = xcb_generate_id(connection_);
  xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
  xcb_create_window_value_list_t values{};
  // Without a background the server leaves on the screen what is there: the window shows without a single
  // pixel being painted.
  values.background_pixmap = XCB_BACK_PIXMAP_NONE;
  values.override_redirect = 1;
  values.event_mask = options.events;
  values.colormap = colormap;
  values.cursor = options.cursor;
  const std::uint32_t background = isTransparent() ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP;
  xcb_create_window_aux(connection_, depth_, window_, screen.root, static_cast<std::int16_t>(pixels_.x()),
                        static_cast<std::int16_t>(pixels_.y()), static_cast<std::uint16_t>(pixels_.width()),
                        static_cast<std::uint16_t>(pixels_.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                        visual,
                        background | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                            XCB_CW_COLORMAP | XCB_CW_CURSOR,
                        &values);
  xcb_free_colormap(connection_, colormap);
  xcb_create_gc(connection_, gc_, window_, 0, nullptr);
}

void UnmanagedWindow::describe(const Options& options) {
  std::string names(options.instanceName);
  names += '\0';
  names += options.className;
  names += '\0';
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(names.size()), names.data());
  std::vector<xcb_atom_t> types;
  for (const std::string_view type : options.types) types.push_back(atom(connection_, type));
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom(connection_, "_NET_WM_WINDOW_TYPE"),
                      XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(types.size()), types.data());
}

void UnmanagedWindow::setBackground(xcb_pixmap_t pixmap) {
  xcb_change_window_attributes(connection_, window_, XCB_CW_BACK_PIXMAP, &pixmap);
}

void UnmanagedWindow::showOnTop() {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  xcb_map_window(connection_, window_);
  xcb_flush(connection_);
}

void UnmanagedWindow::write(const QImage& image, QPoint topLeft) {
  // As many rows at a time as one request takes; a broken connection takes none.
  const auto bytesPerRow = static_cast<std::size_t>(image.bytesPerLine());
  constexpr std::size_t header = 64;
  const std::size_t most = std::size_t{4} * xcb_get_maximum_request_length(connection_);
  if (most <= header) return;
  const int rowsAtATime = static_cast<int>(std::max<std::size_t>(1, (most - header) / bytesPerRow));
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
