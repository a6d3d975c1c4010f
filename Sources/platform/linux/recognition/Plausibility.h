#pragma once

#include <string>
#include <vector>

namespace lumiscan::desktop {

/// A line as it was read, with what tells whether there was text at all.
struct ReadLine {
  std::string text;         ///< UTF-8.
  double confidence = 0;    ///< In its being text, from 0 to 100.
  int letterHeight = 0;     ///< Pixels.
  std::size_t symbols = 0;  ///< Read,
  std::size_t glyphs = 0;   ///< from so many pieces of ink.
  double sureness = 0;      ///< Of the engine, to compare with others, up to 100.
};

/// Drops the lines that were read into what is no text: icons, pictures, patterns. Lines with several letters
/// or digits, surely read, vouch for the others of an image.
void dropImplausible(std::vector<ReadLine>& lines);

}  // namespace lumiscan::desktop
