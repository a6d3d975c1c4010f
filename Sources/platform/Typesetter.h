#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Graphics.h"

namespace lumiscan::platform {

/// What the desktop's fonts make of a text before it is drawn. Main thread only. Texts are UTF-8, widths in
/// points.
class Typesetter {
 public:
  virtual ~Typesetter() = default;

  /// That of the installed desktop.
  static Typesetter& shared();

  /// The size of one line, as `GraphicsContext::sizeOf` gives it.
  virtual Size sizeOf(std::string_view text, const Font& font) = 0;
  /// The text in lines no wider than `width`, broken where its script allows, within a word only where a word
  /// alone is too wide. One empty line for an empty text.
  virtual std::vector<std::string> lines(std::string_view text, const Font& font, double width) = 0;
  /// The text as one line no wider than `width`: when it is too wide an ellipsis replaces its middle.
  virtual std::string truncatedInMiddle(std::string_view text, const Font& font, double width) = 0;
};

}  // namespace lumiscan::platform
