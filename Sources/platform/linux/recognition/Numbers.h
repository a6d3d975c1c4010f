#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Reads zeros and ones as such in what can only be a number, where the engine prefers letters: hexadecimal
/// numbers (0xE4), colours (#e1e4e8) and lengths of style sheets (1em).
void correctNumbers(std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
