#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <string_view>

#include "platform/StatusBar.h"

namespace lumiscan::desktop {

/// The symbol in a square of `side` pixels, its lines on whole pixels where it is drawn for that. An empty
/// picture for a name that isn't known.
QImage symbolPicture(std::string_view name, int side, const QColor& color);

/// What goes around an icon. Where its ground isn't known, a halo of the opposite colour keeps it readable on
/// the wrong one, and isn't seen on the right one.
enum class Halo { none, opposite };

/// What shows for the status item: its image, or else its title. In a square of `side` pixels.
QImage statusPicture(const platform::StatusItemButton& button, int side, const QColor& color, Halo halo);

/// That of the program, for its windows: readable on title bars and task bars of any colour.
QIcon programIcon();

/// The colour of icons on a dark or a light panel.
QColor iconColor(bool onDark);

}  // namespace lumiscan::desktop
