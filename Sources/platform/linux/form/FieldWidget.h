#pragma once

#include <xcb/xcb.h>

#include <QLineEdit>
#include <memory>

#include "platform/Declarative.h"
#include "platform/TextField.h"

namespace lumiscan::desktop {

/// A text field of the program's as a widget: in the looks of a line edit, with the keys going to the field.
class FieldWidget : public QLineEdit {
 public:
  explicit FieldWidget(const platform::TextFieldAdapter& adapter);
  ~FieldWidget() override;

  platform::TextField& field() { return *field_; }

  /// The window in which such a field has the keyboard focus; `XCB_WINDOW_NONE` when none has it.
  static xcb_window_t windowWithFocus();

 protected:
  QSize sizeHint() const override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  // The text isn't the user's: it can't be selected or dragged away.
  void mousePressEvent(QMouseEvent*) override {}
  void mouseMoveEvent(QMouseEvent*) override {}
  void mouseReleaseEvent(QMouseEvent*) override {}
  void mouseDoubleClickEvent(QMouseEvent*) override {}

 private:
  std::shared_ptr<platform::TextField> field_;
};

}  // namespace lumiscan::desktop
