#pragma once

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// How the upper and the lower half of a mark differ.
struct Halves {
  double lean = 0;    // How far the lower one stands to the right of the upper one, in heights of the mark.
  double weight = 0;  // The ink of the lower one for that of the upper one; 0 where one has none.
};

Halves halvesOf(const PixelBox& mark, const GreyBitmap& ink);

/// Whether a stroke is as slender as those of quotation marks are.
bool isSlender(const PixelBox& stroke);

/// Straight marks stand upright and taper off downwards, if at all; curly ones lean, or are heavier below.
bool areStraight(const Halves& halves);
bool isStraight(const PixelBox& mark, const GreyBitmap& ink);

/// How much the ink of two marks differs, one of them turned upside down if asked, from 0 to 1.
double difference(const PixelBox& a, const PixelBox& b, bool turned, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
