#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// The symbols of a line, their boxes those of their ink.
struct SpacedLine {
  std::vector<Symbol>* symbols;
  int letterHeight;  ///< Pixels.
};

/// Adds and removes spaces where the distance between symbols leaves no doubt. The lines of an image tell
/// together how wide a space is, and whether all characters have one width.
void correctSpaces(const std::vector<SpacedLine>& lines);

}  // namespace lumiscan::desktop
