#pragma once

#include <xcb/xcb.h>

namespace lumiscan::desktop::x11 {

/// Asks the window manager to bring a window of ours to the front and give it the focus, on whatever
/// workspace and whatever other program the user is working in: as what the user has just wished for. A
/// window that was mapped before is already known to the window manager when this reaches it.
void activate(xcb_connection_t* connection, xcb_window_t window);

}  // namespace lumiscan::desktop::x11
