#pragma once

#include <string>
#include <string_view>

namespace lumiscan::desktop {

/// The text with U+FFFD in place of what isn't UTF-8.
std::string repairedUtf8(std::string_view text);

/// The code point of which the text consists; nothing else is one, so that is U+FFFD.
char32_t onlyCodePoint(std::string_view text);
std::string utf8Of(char32_t codePoint);

}  // namespace lumiscan::desktop
