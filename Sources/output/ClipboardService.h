#pragma once

#include <string>
#include <string_view>

namespace lumiscan {

/// Puts captures on the pasteboard. Main thread only.
namespace ClipboardService {

/// The preference that holds the additive buffer: the texts appended since it was last cleared, a line feed
/// between each two. Absent, and of any type but a string, it counts as empty.
inline constexpr std::string_view additiveBufferKey = "additiveClipboardBuffer";

/// Replaces whatever the pasteboard holds by `text` (UTF-8), as plain text.
void copy(std::string_view text);

/// Appends `text`, also when empty, to the additive buffer, stores that and puts all of it on the pasteboard.
/// Returns the new buffer.
std::string appendAdditive(std::string_view text);

/// Empties the additive buffer. The pasteboard keeps what it holds.
void clearAdditive();

}  // namespace ClipboardService
}  // namespace lumiscan
