#pragma once

#include <string>
#include <vector>

namespace lumiscan::desktop {

/// A line as it was read, with what tells whether there was text at all.
struct ReadLine {
  std::string text;         ///< UTF-8.
  double confidence = 0;    ///< The engine's in the line, from 0 to 100: as low as in its worst character.
  double sureness = 0;      ///< The mean of its confidence in the characters.
  int letterHeight = 0;     ///< Pixels.
  std::size_t symbols = 0;  ///< Read,
  std::size_t likely = 0;   ///< so many of which look like what they were read as,
  std::size_t pieces = 0;   ///< from so many pieces of ink that stand side by side.
};

/// Drops the lines that were read into what is no text: icons, pictures, patterns. Lines that surely are text
/// vouch for the others of an image.
void dropImplausible(std::vector<ReadLine>& lines);

}  // namespace lumiscan::desktop
