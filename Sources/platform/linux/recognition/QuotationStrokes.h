#pragma once

#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// An apostrophe or quotation mark at the height of capitals. The box in pixels of the image.
struct QuoteMark {
  PixelBox box;
  int strokes;    ///< 1 or 2.
  bool touching;  ///< Two strokes can't be told apart; it may be another sign, such as an asterisk.
  bool straight;
  double lean;    ///< As `Halves::lean`, but beyond the slant of the line's letters.
  double weight;  ///< As `Halves::weight`.
};

/// The marks of a line from left to right.
std::vector<QuoteMark> quoteMarks(const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                                  const TextLine& line);

/// Whether beside a mark of one stroke there is another like it, which touches a letter but is no stem of
/// one.
bool hasTwinAtLetter(const QuoteMark& mark, const GreyBitmap& ink);

/// The same where the other can be nothing but the second stroke: it is near, ends where the mark does, and
/// its upper half stands free.
bool hasClearTwin(const QuoteMark& mark, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
