#pragma once

#include "hotkeys/HotkeyAction.h"
#include "platform/Declarative.h"

namespace lumiscan {

/// Places a field that shows and records the shortcut of one action in a form.
class HotkeyRecorderView : public platform::TextFieldAdapter {
 public:
  explicit HotkeyRecorderView(HotkeyAction action) : action_(action) {}

  std::string accessibilityLabel() const override { return std::string(title(action_)); }
  std::shared_ptr<platform::TextField> makeView() const override;
  void updateView(platform::TextField& field) const override;

 private:
  HotkeyAction action_;
};

}  // namespace lumiscan
