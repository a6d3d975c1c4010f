#include "platform/linux/x11/ThemeCursors.h"

#include <xcb/xcb_cursor.h>

namespace lumiscan::desktop::x11 {

namespace {

xcb_cursor_t load(xcb_connection_t* connection, platform::CursorShape shape) {
  xcb_cursor_context_t* context = nullptr;
  auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
  if (xcb_cursor_context_new(connection, screen.data, &context) < 0) return XCB_CURSOR_NONE;
  const xcb_cursor_t cursor =
      xcb_cursor_load_cursor(context, shape == platform::CursorShape::crosshair ? "crosshair" : "left_ptr");
  xcb_cursor_context_free(context);
  return cursor;
}

}  // namespace

ThemeCursors::~ThemeCursors() {
  for (const auto& [shape, cursor] : loaded_)
    if (cursor != XCB_CURSOR_NONE) xcb_free_cursor(connection_, cursor);
}

xcb_cursor_t ThemeCursors::cursor(platform::CursorShape shape) {
  const auto known = loaded_.find(shape);
  return known != loaded_.end() ? known->second : loaded_[shape] = load(connection_, shape);
}

}  // namespace lumiscan::desktop::x11
