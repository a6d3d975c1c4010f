#pragma once

#include <memory>
#include <string_view>

#include "platform/Graphics.h"
#include "platform/Image.h"

namespace lumiscan::platform {

/// A bitmap in memory that is drawn on; one point is one pixel. Needs no application object and no
/// display. A context belongs to one thread.
class BitmapContext : public GraphicsContext {
 public:
  /// Transparent at first. Nothing when there is no memory for it or a size isn't positive.
  static std::unique_ptr<BitmapContext> create(int width, int height);

  /// Draws one line of text with its baseline starting at `baseline`.
  virtual void drawLine(std::string_view text, Point baseline, const TextAttributes& attributes) = 0;

  /// A copy of what has been drawn so far.
  virtual Image makeImage() = 0;
};

}  // namespace lumiscan::platform
