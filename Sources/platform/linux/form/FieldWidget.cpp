#include "platform/linux/form/FieldWidget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include "platform/linux/Graphics.h"
#include "platform/linux/ToolkitConnection.h"
#include "platform/linux/form/FormPalette.h"
#include "platform/linux/x11/KeyCodes.h"
#include "platform/linux/x11/ModifierMap.h"

namespace lumiscan::desktop {

namespace {

/// Whether the key does nothing but modify others, on the user's layout.
bool isModifier(int key) {
  switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_AltGr:
    case Qt::Key_Mode_switch:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
      return true;
    default:
      return false;
  }
}

/// The toolkit's native codes are those of the X server.
platform::KeyEvent keyEvent(const QKeyEvent& event) {
  const auto key = x11::virtualKeyCode(static_cast<xcb_keycode_t>(event.nativeScanCode()));
  const auto modifiers = static_cast<std::uint16_t>(event.nativeModifiers());
  return {key.value_or(platform::keyCodeNone), x11::ModifierMap::read(toolkitConnection()).flags(modifiers)};
}

}  // namespace

FieldWidget::FieldWidget(const platform::TextFieldAdapter& adapter) : field_(adapter.makeView()) {
  const platform::TextField::Attributes& attributes = field_->attributes();
  setReadOnly(true);
  setFrame(attributes.isBezeled);
  setFont(qtFont(attributes.font));
  setPlaceholderText(QString::fromStdString(attributes.placeholderString));
  setAlignment(attributes.alignment == platform::TextAlignment::center ? Qt::AlignCenter : Qt::AlignLeading);
  setAccessibleName(QString::fromStdString(adapter.accessibilityLabel()));
  setContextMenuPolicy(Qt::NoContextMenu);
  setCursor(Qt::PointingHandCursor);
  // Else the input method would see the keys first.
  setAttribute(Qt::WA_InputMethodEnabled, false);
  int focus = Qt::NoFocus;
  if (field_->acceptsFirstResponder()) focus |= Qt::ClickFocus;
  if (field_->canBecomeKeyView()) focus |= Qt::TabFocus;
  setFocusPolicy(static_cast<Qt::FocusPolicy>(focus));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  field_->stringValueChanged = [this] { setText(QString::fromStdString(field_->stringValue())); };
  field_->stringValueChanged();
}

FieldWidget::~FieldWidget() { field_->stringValueChanged = nullptr; }

xcb_window_t FieldWidget::windowWithFocus() {
  const auto* focused = dynamic_cast<FieldWidget*>(QApplication::focusWidget());
  if (!focused) return XCB_WINDOW_NONE;
  return static_cast<xcb_window_t>(focused->window()->internalWinId());
}

QSize FieldWidget::sizeHint() const {
  // Room for the placeholder, whatever the text.
  constexpr int characters = 18;
  return {fontMetrics().averageCharWidth() * characters, QLineEdit::sizeHint().height()};
}

bool FieldWidget::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    // The key is for the field, not for a shortcut of the window or the toolkit.
    event->accept();
    return true;
  }
  if (event->type() == QEvent::KeyPress) {
    // The toolkit would leave the field by Tab with Super held, too, which is a combination to record.
    auto& key = static_cast<QKeyEvent&>(*event);
    const bool isTab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
    if (isTab && key.modifiers().testFlag(Qt::MetaModifier)) {
      keyPressEvent(&key);
      return true;
    }
  }
  return QLineEdit::event(event);
}

void FieldWidget::keyPressEvent(QKeyEvent* event) {
  if (isModifier(event->key()))
    field_->flagsChanged(keyEvent(*event));
  else
    field_->keyDown(keyEvent(*event));
}

void FieldWidget::keyReleaseEvent(QKeyEvent* event) {
  if (isModifier(event->key())) field_->flagsChanged(keyEvent(*event));
}

void FieldWidget::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  if (!hasFocus()) return;
  // No cursor blinks here, so that a key will be taken must show in another way.
  constexpr double width = 2;
  constexpr double corner = 3;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(focusColor(palette()), width));
  painter.drawRoundedRect(QRectF(rect()).adjusted(width / 2, width / 2, -width / 2, -width / 2), corner,
                          corner);
}

void FieldWidget::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  deselect();
}

}  // namespace lumiscan::desktop
