#include "hotkeys/HotkeyAction.h"

namespace lumiscan {

namespace {

struct Names {
  std::string_view rawValue;
  std::string_view title;
};

constexpr std::array<Names, allHotkeyActions.size()> names = {{
    {"captureText", "Capture Text"},
    {"captureTextNoBreaks", "Capture Text (join lines)"},
    {"captureAndSpeak", "Capture & Speak"},
    {"captureBarcode", "Capture QR / Barcode"},
    {"captureLastSelection", "Capture Last Selection"},
    {"stopSpeaking", "Stop Speaking"},
    {"toggleAdditiveClipboard", "Toggle Additive Clipboard"},
    {"clearAdditiveClipboard", "Clear Additive Clipboard"},
}};

const Names& namesOf(HotkeyAction action) { return names[static_cast<std::size_t>(action)]; }

}  // namespace

std::string_view rawValue(HotkeyAction action) { return namesOf(action).rawValue; }

std::optional<HotkeyAction> hotkeyAction(std::string_view raw) {
  for (const HotkeyAction action : allHotkeyActions)
    if (rawValue(action) == raw) return action;
  return std::nullopt;
}

std::string_view title(HotkeyAction action) { return namesOf(action).title; }

}  // namespace lumiscan
