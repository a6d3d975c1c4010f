#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Whether a character is an apostrophe, a quotation mark or a backtick.
bool isQuote(std::string_view character);
bool isCurlySingle(const Symbol& symbol);
/// Whether a symbol stands between two letters.
bool isWithinWord(const std::vector<Symbol>& symbols, std::size_t i);

/// Makes the marks of a line agree: what opens with what closes, and all double ones with one another. Boxes
/// in pixels of the image.
void matchQuotes(std::vector<Symbol>& symbols, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
