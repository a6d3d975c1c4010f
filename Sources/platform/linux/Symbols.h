#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <optional>
#include <string_view>

class QPainter;

namespace lumiscan::desktop {

/// The side of the square in which symbols are drawn.
inline constexpr int symbolSide = 20;

/// Our own drawings of the symbols that the program names, as one outline in such a square, with y downwards.
/// Nothing for another name.
std::optional<QPainterPath> symbolOutline(std::string_view name);

/// The symbol "text.viewfinder" in a square of that many units, with each of its edges on a whole unit: sharp
/// where a unit is a pixel.
QPainterPath textViewfinder(int side);

/// Draws the symbol as large as fits into the rectangle and in its middle; another name draws nothing.
void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color);

}  // namespace lumiscan::desktop
