#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lumiscan {

/// What a global shortcut can start. The order is fixed: a hotkey's identifier is its action's position.
enum class HotkeyAction {
  captureText,
  captureTextNoBreaks,
  captureAndSpeak,
  captureBarcode,
  captureLastSelection,
  stopSpeaking,
  toggleAdditiveClipboard,
  clearAdditiveClipboard,
};

/// All actions in their order.
inline constexpr std::array<HotkeyAction, 8> allHotkeyActions = {
    HotkeyAction::captureText,
    HotkeyAction::captureTextNoBreaks,
    HotkeyAction::captureAndSpeak,
    HotkeyAction::captureBarcode,
    HotkeyAction::captureLastSelection,
    HotkeyAction::stopSpeaking,
    HotkeyAction::toggleAdditiveClipboard,
    HotkeyAction::clearAdditiveClipboard,
};

/// The action's name in stored keys and log lines.
std::string_view rawValue(HotkeyAction action);
/// The action of that name, compared exactly; nothing for any other text.
std::optional<HotkeyAction> hotkeyAction(std::string_view rawValue);
/// The action's label in the settings window.
std::string_view title(HotkeyAction action);

}  // namespace lumiscan
