#include "settings/HotkeyRecorderField.h"

#include "hotkeys/HotkeyManager.h"
#include "platform/Sound.h"

namespace lumiscan {

void HotkeyRecorderField::keyDown(const platform::KeyEvent& event) {
  if (event.keyCode == platform::keyCodeEscape) {
    if (onClear) onClear();
    return;
  }
  constexpr platform::ModifierFlags needed =
      platform::modifierCommand | platform::modifierOption | platform::modifierControl;
  // A key without a code of its own could be stored, but never work.
  if (!(event.modifierFlags & needed) || event.keyCode == platform::keyCodeNone) {
    platform::Sounds::shared().beep();
    return;
  }
  if (onRecord) onRecord(event.keyCode, HotkeyManager::carbonModifiers(event.modifierFlags));
}

}  // namespace lumiscan
