#include "platform/linux/StatusIcon.h"

#include <QFont>
#include <QPainter>

#include "platform/linux/Symbols.h"

namespace lumiscan::desktop {

namespace {

QImage emptyPicture(int side) {
  QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  return picture;
}

}  // namespace

QImage symbolPicture(std::string_view name, int side, const QColor& color) {
  QImage picture = emptyPicture(side);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  if (name == "text.viewfinder")
    painter.fillPath(textViewfinder(side), color);
  else
    drawSymbol(painter, name, QRectF(0, 0, side, side), color);
  return picture;
}

QImage statusPicture(const platform::StatusItemButton& button, int side, const QColor& color) {
  if (button.image) return symbolPicture(button.image->name, side, color);
  QImage picture = emptyPicture(side);
  QPainter painter(&picture);
  QFont font;
  font.setPixelSize(side * 7 / 8);
  painter.setFont(font);
  painter.setPen(color);
  painter.drawText(picture.rect(), Qt::AlignCenter, QString::fromStdString(button.title));
  return picture;
}

QColor iconColor(bool onDark) { return onDark ? QColor(0xF2, 0xF2, 0xF2) : QColor(0x2E, 0x2E, 0x2E); }

}  // namespace lumiscan::desktop
