#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <optional>
#include <string_view>

class QPainter;

namespace lumiscan::desktop {

/// Our own drawings of the symbols that the program names, as one outline in a square of 20 by 20 units with
/// y downwards. Nothing for another name.
std::optional<QPainterPath> symbolOutline(std::string_view name);

/// Draws the symbol as large as fits into the rectangle and in its middle; another name draws nothing.
void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color);

}  // namespace lumiscan::desktop
