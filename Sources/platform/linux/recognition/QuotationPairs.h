#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Whether a character is an apostrophe, a quotation mark or a backtick.
bool isQuote(std::string_view character);
bool isCurlySingle(const Symbol& symbol);
/// Whether a symbol is a double mark at the height of capitals, straight or curly.
bool isDouble(const Symbol& symbol);
/// Whether a symbol stands between two letters.
bool isWithinWord(const std::vector<Symbol>& symbols, std::size_t i);
/// Whether a mark stands before what it surrounds.
bool opens(const std::vector<Symbol>& symbols, std::size_t i);

/// Makes what opens and what closes agree, in cells only the kind: no stroke touches a letter there, and code
/// has both marks side by side. Boxes in pixels of the image.
void matchQuotes(std::vector<Symbol>& symbols, const GreyBitmap& ink, bool areInCells);

}  // namespace lumiscan::desktop
