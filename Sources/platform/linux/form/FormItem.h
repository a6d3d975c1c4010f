#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <string>

#include "platform/Declarative.h"

namespace lumiscan::desktop {

/// One item of a section as a widget. Main thread only.
class FormItem : public QWidget {
 public:
  /// Shows another description of the same item. False when the item is another one, which takes a new
  /// widget.
  virtual bool update(const platform::Section::Item& item) = 0;
  /// The parts that can have the keyboard focus, in their order; the places of a row keep their numbers.
  virtual QWidgetList focusParts() = 0;

  static std::unique_ptr<FormItem> make(const platform::Section::Item& item);
};

/// A text as controls take it, in which an ampersand would else mark a letter.
QString controlText(const std::string& text);

/// A label in the look of the text.
std::unique_ptr<QWidget> makeTextLabel(const platform::Text& text);
void updateTextLabel(QWidget& label, const platform::Text& text);

}  // namespace lumiscan::desktop
