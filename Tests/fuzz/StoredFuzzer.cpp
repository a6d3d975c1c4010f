// Reads arbitrary bytes as the stored history, last selection and key combination. What can be read must be
// the same after it was stored again.

#include <cstddef>
#include <cstdint>

#include "capture/LastSelection.h"
#include "fuzz/Require.h"
#include "hotkeys/HotkeyManager.h"
#include "output/CaptureRecord.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::fuzzing {
namespace {

void readHistory(std::string_view stored) {
  const auto records = decodedCaptureRecords(stored);
  if (!records) return;
  const auto again = encoded(*records);
  require(again.has_value() && decodedCaptureRecords(*again) == records);
}

void readLastSelection(std::string_view stored) {
  const auto selection = decodedLastSelection(stored);
  if (!selection) return;
  const auto again = encoded(*selection);
  require(again.has_value() && decodedLastSelection(*again) == selection);
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
}  // namespace lumiscan::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view stored(reinterpret_cast<const char*>(data), size);
  lumiscan::fuzzing::readHistory(stored);
  lumiscan::fuzzing::readLastSelection(stored);
  lumiscan::fuzzing::readBinding(stored);
  return 0;
}
