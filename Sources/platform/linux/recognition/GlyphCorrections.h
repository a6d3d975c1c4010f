#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Takes the underscores out of a line's glyphs: the engine's models hardly know them. Underlines go with
/// them and are not returned.
std::vector<Glyph> takeUnderscores(std::vector<Glyph>& glyphs, const TextLine& line);

/// Puts the underscores back between the symbols that were read without them, all boxes in pixels of the
/// image. `shortest` is the width of the shortest stroke amid letters of this size, in this line or others.
void insertUnderscores(std::vector<Symbol>& symbols, const std::vector<Glyph>& underscores,
                       const std::vector<Glyph>& letters, const TextLine& line, int shortest);

/// Makes dashes, and tildes whose ink is level, as many hyphens as there are strokes; and those hyphens that
/// touch another or make an arrow.
void correctDashes(std::vector<Symbol>& symbols, const GreyBitmap& ink, const TextLine& line);

}  // namespace lumiscan::desktop
