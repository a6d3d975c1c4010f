#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Reads a line of nothing but marks of one kind: the quotation marks that open and close a longer text, the
/// semicolons that end a case, colons, the hyphens of a rule, in code also the signs around comments and
/// blocks. Without a letter beside them the engine takes them for letters. Nothing where there is anything
/// else. Boxes in pixels of the image.
std::vector<Symbol> readLoneMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line);

}  // namespace lumiscan::desktop
