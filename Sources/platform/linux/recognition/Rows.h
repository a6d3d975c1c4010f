#pragma once

#include <vector>

#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// A line of text while it is put together.
struct Row {
  std::vector<Glyph> glyphs;
  int top, bottom;  ///< Of most of its letters, in pixels of the image.
};

/// The rows of glyphs that are sorted from left to right. `usual` is the usual height of a letter in pixels.
std::vector<Row> rowsOf(const std::vector<Glyph>& glyphs, int usual, Characters characters);

}  // namespace lumiscan::desktop
