#pragma once

#include <cstddef>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/GlyphClassifier.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

// What one symbol becomes whose ink is a shape of its own.

bool isLetter(char32_t c);
bool isDigit(char32_t c);

constexpr double surely = 98;  ///< Confidence of the engine.

/// The characters of the same word on both sides; none where there is none.
struct Neighbours {
  char32_t before = Classification::noCharacter;
  char32_t after = Classification::noCharacter;
  bool isBeforeTallDigit = false;  // Of a capital: the digit is clearly higher.
  bool isOption = false;           // Behind a hyphen that begins a word.
};

/// What the symbol becomes by its shape.
void correctSymbol(Symbol& symbol, const Classification& shape, const Neighbours& beside, bool isInCells);

/// 1, l, I, the bar and the exclamation mark are little more than one stroke: what is beside it says which it
/// may be, and the shape which of these it is.
void correctStroke(Symbol& symbol, const Classification& shape, const Neighbours& beside,
                   std::size_t capitalsBefore, const TextLine& line);

/// A zero is an O amid capitals, unless it is more like a zero than an O ever is, with a dot or a stroke, or
/// the capitals are hexadecimal digits. Where characters have one width, zeros mostly have them.
void correctZero(Symbol& symbol, const Classification& shape, const Neighbours& beside, const TextLine& line);

}  // namespace lumiscan::desktop
