#include "platform/Appearance.h"

namespace lumiscan::platform {

Color Appearance::labelColor() const {
  return isDark ? Color::white().withAlpha(0.92) : Color::black().withAlpha(0.88);
}

Color Appearance::secondaryLabelColor() const {
  return isDark ? Color::white().withAlpha(0.62) : Color::black().withAlpha(0.58);
}

Color Appearance::systemGreen() const { return isDark ? Color{0.19, 0.82, 0.35} : Color{0.16, 0.70, 0.30}; }

Color Appearance::panelMaterial() const {
  const Color solid = isDark ? Color{0.17, 0.17, 0.18} : Color{0.96, 0.96, 0.97};
  return blursBehindWindows ? solid.withAlpha(0.72) : solid;
}

}  // namespace lumiscan::platform
