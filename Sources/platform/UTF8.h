#pragma once

#include <string>
#include <string_view>

namespace lumiscan::platform {

/// The text with U+FFFD in place of every byte that isn't part of valid UTF-8. Any thread.
std::string validUTF8(std::string_view text);

}  // namespace lumiscan::platform
