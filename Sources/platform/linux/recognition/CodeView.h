#pragma once

#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// How a part of an image is looked at.
struct Look {
  int factor = 1;               ///< How many pixels wide and high each pixel becomes,
  bool smooth = false;          ///< with even transitions rather than as a square.
  bool upright = false;         ///< Whether what is tilted is turned upright.
  bool fixedThreshold = false;  ///< Whether dark is what is darker than medium grey, not than what is around.
  bool negative = false;        ///< Whether dark and light change places.
};

/// A part of an image as it is looked at, from black to white. It is cut to the light card that the code is
/// on, if the ground around is dark, and gets a wide margin of the card's ground: the quiet zone that
/// symbologies demand.
class CodeView {
 public:
  /// `tilt` in radians: how far to turn it back, clockwise as seen.
  CodeView(const GreyBitmap& image, const PixelBox& part, const Look& look, double tilt);

  const GreyBitmap& bitmap() const { return bitmap_; }
  /// A box in the bitmap as the box around it in the image.
  PixelBox toImage(const PixelBox& box) const;

 private:
  GreyBitmap bitmap_;
  double factor_;
  double tilt_;
  double centreX_, centreY_;  // Of what is shown, in the image.
};

/// How far the edges in a part of an image are turned clockwise, in radians, from -pi / 4 to pi / 4: edges
/// at right angles to each other count alike.
double tiltOf(const GreyBitmap& image, const PixelBox& part);

}  // namespace lumiscan::desktop
