// Reads arbitrary bytes as the stored history, last selection and key combination. What can be read must be
// the same after it was stored again.

#include <cstddef>
#include <cstdint>

#include "capture/LastSelection.h"
#include "fuzz/Target.h"
#include "hotkeys/HotkeyManager.h"
#include "output/CaptureRecord.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::fuzzing {
namespace {

void decode(const auto& decoded, std::string_view stored) {
  const auto value = decoded(stored);
  if (!value) return;
  const auto again = encoded(*value);
  require(again.has_value() && decoded(*again) == value);
}

void readBinding(std::string_view stored) {
  testing::SimulatedDesktop desktop;
  desktop.userDefaults().setObject("hotkey.captureText", std::string(stored));
  auto& manager = HotkeyManager::shared();
  const auto binding = manager.hotkey(HotkeyAction::captureText);
  if (!binding) return;
  require(binding->keyCode != 0);
  require(!HotkeyManager::displayString(binding->keyCode, binding->modifiers).empty());
  manager.setHotkey(binding, HotkeyAction::captureText);
  require(manager.hotkey(HotkeyAction::captureText) == binding);
}

}  // namespace

void use(std::string_view input) {
  decode(decodedCaptureRecords, input);
  decode(decodedLastSelection, input);
  readBinding(input);
}

}  // namespace lumiscan::fuzzing
