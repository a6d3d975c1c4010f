#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Sets the cells of each line, as its ink alone tells them; none where characters have widths of their own.
/// Short lines take the pitch of the others where their ink fits it. Glyphs that touch are parted at the
/// borders of the cells they lie in.
void findCells(std::vector<TextLine>& lines, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
