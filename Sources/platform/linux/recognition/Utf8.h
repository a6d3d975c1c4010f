#pragma once

#include <string>
#include <string_view>

namespace lumiscan::desktop {

/// The text with U+FFFD in place of what isn't UTF-8.
std::string repairedUtf8(std::string_view text);

}  // namespace lumiscan::desktop
