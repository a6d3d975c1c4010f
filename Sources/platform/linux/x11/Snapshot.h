#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

/// The pixels of a part of a window or pixmap on the server, without the cursor; of the root window, what the
/// screen shows now. `pixels` is whole, origin at the drawable's top left, y downwards. Any thread. Nothing
/// when the server refuses or keeps its pixels in a form that is not known here.
///
/// Where the server shares memory with us it writes strips while we copy those before. The server serves
/// nobody else meanwhile, so that the strips fit together.
std::optional<platform::Image> takeSnapshot(const Connection& connection, xcb_drawable_t drawable,
                                            const platform::Rect& pixels);

}  // namespace lumiscan::desktop::x11
