#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// Whether a symbol is part of a word, and no sign beside it.
bool isWordCharacter(const Symbol& symbol);

/// The symbols of a line, their boxes those of their ink.
struct SpacedLine {
  std::vector<Symbol>* symbols;
  const TextLine* line;
};

/// Adds and removes spaces where the distance between symbols leaves no doubt. The lines of an image tell
/// together how wide a space is.
void correctSpaces(const std::vector<SpacedLine>& lines);

}  // namespace lumiscan::desktop
