#pragma once

#include <optional>
#include <vector>

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// A connected piece of ink: a letter, a dot, an underscore. In pixels of the image.
struct Glyph {
  PixelBox box;
  bool isCut = false;  // From others that it touched; some of its ink may be theirs.
  int width() const { return box.right - box.left + 1; }
  int height() const { return box.bottom - box.top + 1; }
  int middle() const { return (box.top + box.bottom) / 2; }
};

/// The places of a line whose characters all have one width, in pixels of the image.
struct Cells {
  double pitch;   ///< From one place to the next.
  double middle;  ///< Of one of the places, along x.

  /// How many places a position is behind that one; whole numbers in the middle of places.
  double placeOf(double x) const { return (x - middle) / pitch; }
  /// Whether a stroke so wide fills its place, as dashes and underscores do and hyphens don't.
  bool areFilledBy(int width) const { return width >= 0.92 * pitch; }
};

/// Ink beside words that may be an icon rather than text. The box in pixels of the image.
struct MaybeIcon {
  PixelBox box;
  bool looksLikeText;  ///< As one character does.
  bool standsOnLine;   ///< As letters do that don't reach below the baseline.
};

/// The glyphs of one line of text, from left to right.
struct TextLine {
  std::vector<Glyph> glyphs;
  PixelBox box;                               ///< Around the glyphs.
  int letterHeight = 0;                       ///< The usual height of the letters around it.
  int baseline = 0;                           ///< The row below the feet of most letters.
  std::vector<MaybeIcon> maybeIcons = {};     ///< That stand before or behind its words.
  std::optional<Cells> cells = std::nullopt;  ///< Where characters have one width: see `findCells`.
  /// Around all of a line that has several type sizes, each piece of one size being a line here.
  std::optional<PixelBox> whole = std::nullopt;
};

/// What a text may be made of.
enum class Characters {
  alphabetic,  ///< Letters, most of them of one piece.
  wide,        ///< Also characters of many pieces, as wide as they are high: Chinese, Japanese, Korean.
};

/// The lines of text in reading order: column by column where the text is set in columns, from top to
/// bottom in each. What can't be text, such as frames and rules, is in no line, nor are icons where there are
/// none but Latin letters. Underlines that touch letters are erased from the ink.
std::vector<TextLine> findTextLines(GreyBitmap& ink, Characters characters, bool isLatin = true);

/// The smallest box around all glyphs. Precondition: there is one.
PixelBox boxAround(const std::vector<Glyph>& glyphs);

}  // namespace lumiscan::desktop
