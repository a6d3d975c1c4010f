#pragma once

#include <string>
#include <string_view>

namespace lumiscan::desktop {

/// The code point of which the text consists; nothing else is one, so that is U+FFFD.
char32_t onlyCodePoint(std::string_view text);
std::string utf8Of(char32_t codePoint);

}  // namespace lumiscan::desktop
