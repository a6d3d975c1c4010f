#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// The usual height in pixels of the glyphs that may be letters or, where none is narrow enough, words whose
/// letters touch.
int usualHeight(const std::vector<Glyph>& glyphs, Characters characters = Characters::alphabetic);

/// The lines of glyphs that stand in one column, from top to bottom.
std::vector<TextLine> linesOf(const std::vector<Glyph>& glyphs, Characters characters);

/// The same of alphabetic glyphs, where the usual height of a letter is known, in pixels.
std::vector<TextLine> linesOf(const std::vector<Glyph>& glyphs, int usual);

}  // namespace lumiscan::desktop
