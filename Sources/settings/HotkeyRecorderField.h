#pragma once

#include <cstdint>
#include <functional>

#include "platform/TextField.h"

namespace lumiscan {

/// Takes the key combination that the user presses while it has the keyboard focus. It knows nothing of
/// actions and stores nothing.
class HotkeyRecorderField : public platform::TextField {
 public:
  /// A combination that can be a shortcut: a virtual key code and the modifier bits of a binding.
  std::function<void(std::uint32_t keyCode, std::uint32_t modifiers)> onRecord;
  /// Escape, whatever modifiers are held.
  std::function<void()> onClear;

  bool acceptsFirstResponder() const override { return true; }
  bool canBecomeKeyView() const override { return true; }
  /// Handles every key that comes, so none goes on to the window. Tab and Shift+Tab don't come, but move on
  /// to the next control: no combination is lost by that, since without Command, Option or Control they could
  /// only be refused.
  void keyDown(const platform::KeyEvent& event) override;
  /// A modifier key alone means nothing.
  void flagsChanged(const platform::KeyEvent&) override {}
};

}  // namespace lumiscan
