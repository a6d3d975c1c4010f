#pragma once

#include <string_view>

namespace lumiscan {

/// Puts captures on the pasteboard. Main thread only.
namespace ClipboardService {

/// Replaces whatever the pasteboard holds by `text` (UTF-8), as plain text.
void copy(std::string_view text);

}  // namespace ClipboardService
}  // namespace lumiscan
