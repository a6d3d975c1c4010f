#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Whether a line is of Chinese, Japanese or Korean characters, as far as it is of any script; words of
/// others may be among them.
bool isWideText(const std::vector<Symbol>& symbols);

/// What the models of Chinese and Japanese get wrong: makes signs that belong to wide characters as wide as
/// they, and drops the spaces that were read into the room around such signs.
void correctWideText(std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
