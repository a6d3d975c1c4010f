#pragma once

#include <xcb/xcb.h>

#include <map>

#include "platform/Cursor.h"

namespace lumiscan::desktop::x11 {

/// Cursors of the user's theme, each loaded once. Main thread only.
class ThemeCursors {
 public:
  explicit ThemeCursors(xcb_connection_t* connection) : connection_(connection) {}
  ~ThemeCursors();
  ThemeCursors(const ThemeCursors&) = delete;
  ThemeCursors& operator=(const ThemeCursors&) = delete;

  /// Lives as long as this object; `XCB_CURSOR_NONE` when there is none.
  xcb_cursor_t cursor(platform::CursorShape shape);

 private:
  xcb_connection_t* connection_;
  std::map<platform::CursorShape, xcb_cursor_t> loaded_;
};

}  // namespace lumiscan::desktop::x11
