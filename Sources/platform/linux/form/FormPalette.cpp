#include "platform/linux/form/FormPalette.h"

#include <QGuiApplication>

namespace lumiscan::desktop {

namespace {

constexpr double captionScale = 0.85;

bool looksDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor mixed(const QColor& ground, const QColor& ink, double share) {
  const auto mix = [share](int a, int b) { return qRound(a + (b - a) * share); };
  return QColor(mix(ground.red(), ink.red()), mix(ground.green(), ink.green()),
                mix(ground.blue(), ink.blue()));
}

}  // namespace

QPalette formPalette(bool isDark) {
  QPalette palette = QGuiApplication::palette();
  if (looksDark(palette) != isDark) {
    palette = isDark ? QPalette(QColor(0x3A, 0x3A, 0x3D), QColor(0x24, 0x24, 0x26))
                     : QPalette(QColor(0xEC, 0xEC, 0xEC), QColor(0xF2, 0xF2, 0xF2));
    palette.setColor(QPalette::Highlight, QColor(0x1A, 0x6F, 0xD6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Base, isDark ? QColor(0x1C, 0x1C, 0x1E) : QColor(Qt::white));
  }
  // Dimmed, and still easy to read.
  const QColor text = palette.color(QPalette::WindowText);
  palette.setColor(QPalette::PlaceholderText, mixed(groupColor(palette), text, 0.7));
  return palette;
}

QColor groupColor(const QPalette& palette) {
  const QColor window = palette.color(QPalette::Window);
  return looksDark(palette) ? mixed(window, Qt::white, 0.06) : mixed(window, Qt::white, 0.7);
}

QColor separatorColor(const QPalette& palette) {
  return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.14);
}

QColor switchOffColor(const QPalette& palette) {
  return mixed(groupColor(palette), palette.color(QPalette::WindowText), 0.45);
}

QColor focusColor(const QPalette& palette) { return palette.color(QPalette::Highlight); }

QFont captionFont() {
  QFont font = QGuiApplication::font();
  if (font.pixelSize() > 0)
    font.setPixelSize(qRound(font.pixelSize() * captionScale));
  else
    font.setPointSizeF(font.pointSizeF() * captionScale);
  return font;
}

QFont headerFont() {
  QFont font = QGuiApplication::font();
  font.setWeight(QFont::DemiBold);
  return font;
}

}  // namespace lumiscan::desktop
