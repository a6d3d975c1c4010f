#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Finds the baselines of lines of so few characters that most of them may reach below it, as brackets and
/// commas do: it is where they look most like characters. The boxes of lines stay as they are.
void settleBaselines(std::vector<TextLine>& lines, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
