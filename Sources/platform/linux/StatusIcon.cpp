#include "platform/linux/StatusIcon.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QTransform>
#include <string>

#include "platform/linux/Symbols.h"

namespace lumiscan::desktop {

namespace {

/// The symbol in a square of that side; nothing for a name that isn't known.
QPainterPath symbolPath(std::string_view name, int side) {
  if (name == "text.viewfinder") return textViewfinder(side);
  const double scale = static_cast<double>(side) / symbolSide;
  return QTransform::fromScale(scale, scale).map(symbolOutline(name).value_or(QPainterPath()));
}

/// The text in the middle of a square of that side.
QPainterPath textPath(const std::string& text, int side) {
  QFont font;
  font.setPixelSize(side * 7 / 8);
  QPainterPath path;
  path.addText(0, 0, font, QString::fromStdString(text));
  const QPointF middle(side / 2.0, side / 2.0);
  path.translate(middle - path.boundingRect().center());
  return path;
}

QImage emptyPicture(int side) {
  QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  return picture;
}

QPainterPath haloAround(const QPainterPath& path) {
  QPainterPathStroker pen;
  pen.setWidth(2);
  pen.setJoinStyle(Qt::RoundJoin);
  return pen.createStroke(path).united(path);
}

QImage programPicture(int side) {
  QImage picture = emptyPicture(side);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient ground(0, 0, 0, side);
  ground.setColorAt(0, QColor(0x3F, 0x7F, 0xD6));
  ground.setColorAt(1, QColor(0x1F, 0x4F, 0xA3));
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(picture.rect(), side / 5.0, side / 5.0);
  const int margin = side / 12;
  painter.translate(margin, margin);
  painter.fillPath(symbolPath("text.viewfinder", side - 2 * margin), Qt::white);
  return picture;
}

}  // namespace

QImage symbolPicture(std::string_view name, int side, const QColor& color) {
  QImage picture = emptyPicture(side);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(symbolPath(name, side), color);
  return picture;
}

QImage statusPicture(const platform::StatusItemButton& button, int side, const QColor& color, Halo halo) {
  const QPainterPath path =
      button.image ? symbolPath(button.image->name, side) : textPath(button.title, side);
  QImage picture = emptyPicture(side);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  if (halo == Halo::opposite) {
    QColor opposite = iconColor(color.lightness() < 128);
    opposite.setAlphaF(0.6F);
    painter.fillPath(haloAround(path), opposite);
  }
  painter.fillPath(path, color);
  return picture;
}

QIcon programIcon() {
  QIcon icon;
  // Title bars and task bars take the nearest.
  for (const int side : {24, 32, 48, 64, 128}) icon.addPixmap(QPixmap::fromImage(programPicture(side)));
  // At its own size the symbol's lines would run together.
  constexpr int smallest = 16;
  icon.addPixmap(
      QPixmap::fromImage(programPicture(2 * smallest)
                             .scaled(smallest, smallest, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
  return icon;
}

QColor iconColor(bool onDark) { return onDark ? QColor(0xF2, 0xF2, 0xF2) : QColor(0x2E, 0x2E, 0x2E); }

}  // namespace lumiscan::desktop
