#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Reads a line of nothing but straight marks, such as those that open and close a longer text, which the
/// engine mostly can't. Nothing where there is anything else. Boxes in pixels of the image.
std::vector<Symbol> readQuotationMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                       const TextLine& line);

/// A line whose marks are to be corrected. Owns nothing.
struct QuotedLine {
  std::vector<Symbol>* symbols;
  const std::vector<Glyph>* glyphs;
  const TextLine* line;
};

/// Makes apostrophes and quotation marks straight or curly, and one or two strokes, where their ink is: the
/// models prefer what is usual in books. The lines are those of a page, whose marks mostly are of one kind.
void correctQuotes(const std::vector<QuotedLine>& lines, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
