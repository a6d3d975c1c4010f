#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/LineDraft.h"

namespace lumiscan::desktop {

/// Lets symbols of the same ink agree: what the engine reads differently now and then becomes what it is read
/// as mostly, and looks like. Only in fixed-width fonts, in which no two characters have one shape.
void agree(std::vector<LineDraft>& drafts, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
