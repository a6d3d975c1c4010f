#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Drops the lines of which the selection shows less than half: most of their glyphs end at its upper or
/// lower edge, and they are far lower than the other lines. No letter can be told from such a slice, and
/// drawn as high as letters it would cost as much as several lines. From a line at the edge it drops the
/// slices of the next one. The corner of a frame is no line either.
void dropCutLines(std::vector<TextLine>& lines, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
