#pragma once

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// One line of text as the engine wants it: black on white, of the height its model was trained on.
struct LineImage {
  GreyBitmap bitmap;
  double scale;   ///< Pixels of the bitmap per pixel of the image.
  int left, top;  ///< Of the bitmap, in pixels of the image.

  /// A box in the bitmap as a box in the image.
  PixelBox toImage(const PixelBox& box) const;
};

/// The ink that most of the glyphs' strokes reach, so that faint lines become as black as others.
int fullInk(const GreyBitmap& ink, const std::vector<Glyph>& glyphs);

/// How a line is drawn for the engine: its models read the same line a little otherwise at another size.
struct Rendition {
  int height;     ///< Of the bitmap, in pixels; larger ones are reduced to 36 by the engine.
  double margin;  ///< Above and below the glyphs, in heights of a letter.
};

/// Draws the given glyphs of a line alone: what else crosses the line's box stays out.
LineImage drawLine(const GreyBitmap& ink, const TextLine& line, const std::vector<Glyph>& glyphs,
                   const Rendition& rendition);

}  // namespace lumiscan::desktop
