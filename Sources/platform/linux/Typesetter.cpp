#include "platform/linux/Typesetter.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include "platform/linux/Graphics.h"

namespace lumiscan::desktop {

platform::Size QtTypesetter::sizeOf(std::string_view text, const platform::Font& font) {
  return textSize(text, {font, {}});
}

std::vector<std::string> QtTypesetter::lines(std::string_view text, const platform::Font& font,
                                             double width) {
  std::vector<std::string> lines;
  for (const QString& paragraph : qtString(text).split('\n')) {
    QTextLayout layout(paragraph, qtFont(font));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    bool any = false;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      lines.push_back(paragraph.mid(line.textStart(), line.textLength()).trimmed().toStdString());
      any = true;
    }
    layout.endLayout();
    if (!any) lines.emplace_back();
  }
  return lines;
}

std::string QtTypesetter::truncatedInMiddle(std::string_view text, const platform::Font& font, double width) {
  // To the toolkit this character separates versions of a text, of which it takes one that fits.
  constexpr QChar versionSeparator(0x9C);
  const QString whole = qtString(text).replace(versionSeparator, u' ');
  return QFontMetricsF(qtFont(font)).elidedText(whole, Qt::ElideMiddle, width).toStdString();
}

}  // namespace lumiscan::desktop
