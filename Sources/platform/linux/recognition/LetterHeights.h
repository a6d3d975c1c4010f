#pragma once

#include <string_view>
#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// As high as an x.
inline constexpr std::string_view lowLetters = "acemnorsuvwxz";
/// As high as a capital, or nearly.
inline constexpr std::string_view tallCharacters = "0123456789ABCDEFGHKLMNPRTUVXYZbdhkl";

/// The median height in pixels of the symbols among some characters that have ink of their own; 0 without
/// any.
int medianHeight(const std::vector<Symbol>& symbols, std::string_view characters);

}  // namespace lumiscan::desktop
