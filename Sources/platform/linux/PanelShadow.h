#pragma once

#include <QImage>

namespace lumiscan::desktop {

/// The shadow of a panel, which falls a little below it. `reach` is how far it extends beyond the panel on
/// each side.
struct PanelShadow {
  QImage picture;  ///< Premultiplied alpha; nothing where the panel itself is.
  int reach = 0;   ///< Pixels.
};

/// `panel` is the panel's picture, `scale` the pixels to the point.
PanelShadow shadowOf(const QImage& panel, double scale);

}  // namespace lumiscan::desktop
