#pragma once

#include <optional>
#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Whether a symbol is part of a word, and no sign beside it.
bool isWordCharacter(const Symbol& symbol);

/// The distance in pixels at which all symbols stand, if there is one. Their boxes are those of their ink.
std::optional<double> fixedPitch(const std::vector<Symbol>& symbols);

/// The symbols of a line, their boxes those of their ink.
struct SpacedLine {
  std::vector<Symbol>* symbols;
  int letterHeight;  ///< Pixels.
};

/// Adds and removes spaces where the distance between symbols leaves no doubt. The lines of an image tell
/// together how wide a space is, and whether all characters have one width.
void correctSpaces(const std::vector<SpacedLine>& lines);

}  // namespace lumiscan::desktop
