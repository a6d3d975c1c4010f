#pragma once

#include <cstddef>
#include <string_view>

namespace lumiscan {

/// Where the line that starts at the byte `from` ends: at a line feed that isn't the second half of a CR LF
/// pair, which is one character to the reader and ends no line, or at the end of the text. Any thread.
std::size_t endOfLine(std::string_view text, std::size_t from);

}  // namespace lumiscan
