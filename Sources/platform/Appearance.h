#pragma once

#include "platform/Graphics.h"

namespace lumiscan::platform {

/// How the desktop looks now, as far as windows of our own should follow it. A plain value.
struct Appearance {
  bool isDark = false;
  /// Whether the desktop blurs what is behind a translucent window; where it doesn't, a translucent one is
  /// hard to read.
  bool blursBehindWindows = false;

  /// That of the installed desktop. Main thread.
  static Appearance current();

  Color labelColor() const;           ///< Text and symbols.
  Color secondaryLabelColor() const;  ///< Text of less weight.
  Color systemGreen() const;
  /// The ground of a floating panel: translucent where the desktop blurs behind it, else opaque.
  Color panelMaterial() const;
};

}  // namespace lumiscan::platform
