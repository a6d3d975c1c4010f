#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/Graphics.h"
#include "platform/View.h"

namespace lumiscan::platform {

enum class TextAlignment { leading, center };

/// A field that shows a line of text and takes keys. The user can't type into it: what the keys mean is a
/// subclass's business, in `keyDown`. Main thread only.
///
/// The field with the keyboard focus gets every key but those by which the user goes from one control to the
/// next, Tab and Shift+Tab. Presses of the program's own global hotkeys reach it as keys, too, and start
/// nothing.
class TextField : public View {
 public:
  TextField() : View({}) {}

  /// How the field looks; what is set after it first showed has no effect.
  struct Attributes {
    TextAlignment alignment = TextAlignment::leading;
    bool isBezeled = false;
    std::string placeholderString;  ///< Shows while the text is empty.
    Font font;
  };
  Attributes& attributes() { return attributes_; }
  const Attributes& attributes() const { return attributes_; }

  const std::string& stringValue() const { return stringValue_; }
  void setStringValue(std::string text) {
    stringValue_ = std::move(text);
    if (stringValueChanged) stringValueChanged();
  }

  /// Whether keyboard navigation between the controls of a window stops here.
  virtual bool canBecomeKeyView() const { return false; }
  /// A modifier key was pressed or let go.
  virtual void flagsChanged(const KeyEvent&) {}

  /// Set by the desktop while it shows the field.
  std::function<void()> stringValueChanged;

 private:
  Attributes attributes_;
  std::string stringValue_;
};

}  // namespace lumiscan::platform
