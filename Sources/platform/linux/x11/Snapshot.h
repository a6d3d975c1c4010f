#pragma once

#include <optional>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

/// What a part of the X screen shows now, without the cursor. `pixels` is on the X screen: whole pixels,
/// origin at the top left, y downwards. Any thread. Nothing when the server refuses or keeps its pixels in
/// a form that is not known here.
///
/// Where the server shares memory with us it writes straight into the image's memory: one copy in all.
std::optional<platform::Image> takeSnapshot(const Connection& connection, const platform::Rect& pixels);

}  // namespace lumiscan::desktop::x11
