#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

namespace lumiscan::desktop {

/// The palette of our windows: the toolkit's where it looks as the user wants windows to look, else one of
/// our own.
QPalette formPalette(bool isDark);

// Colours that palettes have no role for.
QColor groupColor(const QPalette& palette);      ///< The ground of a group of controls.
QColor separatorColor(const QPalette& palette);  ///< Around groups and between their items.
QColor switchOffColor(const QPalette& palette);  ///< A switch that is off.
QColor focusColor(const QPalette& palette);      ///< Around what has the keyboard focus.

/// The small type of notes.
QFont captionFont();
/// The type of section headers.
QFont headerFont();

}  // namespace lumiscan::desktop
