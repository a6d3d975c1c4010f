#include "hotkeys/HotkeyManager.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "hotkeys/KeyNames.h"
#include "platform/Desktop.h"
#include "platform/Dispatch.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

/// "LMSC", the first character in the most significant byte.
constexpr std::uint32_t signature = 0x4C4D5343;

std::string storedKey(HotkeyAction action) { return "hotkey." + std::string(rawValue(action)); }

std::optional<HotkeyBinding> defaultBinding(HotkeyAction action) {
  constexpr std::uint32_t controlOptionCommand = controlKey | optionKey | cmdKey;
  switch (action) {
    case HotkeyAction::captureText:
      return HotkeyBinding{19, shiftKey | cmdKey};
    case HotkeyAction::captureAndSpeak:
      return HotkeyBinding{1, controlOptionCommand};
    case HotkeyAction::captureBarcode:
      return HotkeyBinding{11, controlOptionCommand};
    case HotkeyAction::captureLastSelection:
      return HotkeyBinding{15, controlOptionCommand};
    case HotkeyAction::captureTextNoBreaks:
    case HotkeyAction::stopSpeaking:
    case HotkeyAction::toggleAdditiveClipboard:
    case HotkeyAction::clearAdditiveClipboard:
      break;
  }
  return std::nullopt;
}

/// The numbers between commas; pieces that aren't unsigned 32-bit decimal numbers are left out.
std::vector<std::uint32_t> numbersIn(std::string_view text) {
  std::vector<std::uint32_t> numbers;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, text.find(','));
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), number);
    if (!piece.empty() && error == std::errc() && end == piece.data() + piece.size())
      numbers.push_back(number);
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
  }
  return numbers;
}

}  // namespace

HotkeyManager& HotkeyManager::shared() { return platform::Desktop::current().singleton<HotkeyManager>(); }

std::optional<HotkeyBinding> HotkeyManager::hotkey(HotkeyAction action) const {
  const auto stored = platform::UserDefaults::standard().stringForKey(storedKey(action));
  if (!stored) return defaultBinding(action);
  const auto numbers = numbersIn(*stored);
  if (numbers.size() != 2 || numbers[0] == 0) return std::nullopt;
  return HotkeyBinding{numbers[0], numbers[1]};
}

void HotkeyManager::setHotkey(std::optional<HotkeyBinding> binding, HotkeyAction action) {
  auto& defaults = platform::UserDefaults::standard();
  if (binding)
    defaults.setObject(storedKey(action),
                       std::to_string(binding->keyCode) + "," + std::to_string(binding->modifiers));
  else
    defaults.removeObject(storedKey(action));
  reregisterAll();
  platform::NotificationCenter::defaultCenter().post(settingsChanged);
}

void HotkeyManager::reregisterAll() {
  unregisterAll();
  installHandlerIfNeeded();
  auto& hotKeys = platform::HotKeys::shared();
  std::uint32_t id = 0;
  for (const HotkeyAction action : allHotkeyActions) {
    ++id;
    const auto binding = hotkey(action);
    if (!binding) continue;
    const auto registration =
        hotKeys.registerEventHotKey(binding->keyCode, binding->modifiers, {signature, id});
    if (registration.status == platform::noErr && registration.ref != 0)
      hotKeyRefs_.push_back(registration.ref);
    else
      logger_.error("register failed: " + std::string(rawValue(action)) +
                    " status=" + std::to_string(registration.status));
  }
  logger_.info("hotkeys registered: " + std::to_string(hotKeyRefs_.size()));
}

void HotkeyManager::unregisterAll() {
  for (const platform::HotKeyRef ref : hotKeyRefs_) platform::HotKeys::shared().unregisterEventHotKey(ref);
  hotKeyRefs_.clear();
}

void HotkeyManager::installHandlerIfNeeded() {
  if (handlerInstalled_) return;
  handlerInstalled_ = true;
  platform::HotKeys::shared().installEventHandler(
      [this](const platform::HotKeyEvent* event) { return handle(event); });
}

platform::HotKeyStatus HotkeyManager::handle(const platform::HotKeyEvent* event) const {
  if (!event || !event->hotKeyID || event->hotKeyID->signature != signature) return platform::noErr;
  const std::uint32_t id = event->hotKeyID->id;
  if (id < 1 || id > allHotkeyActions.size()) return platform::noErr;
  const HotkeyAction action = allHotkeyActions[id - 1];
  logger_.info("fired: " + std::string(rawValue(action)));
  platform::MainQueue::async([action] {
    // A copy, since the callback may replace itself.
    if (const auto callback = shared().onAction) callback(action);
  });
  return platform::noErr;
}

std::string HotkeyManager::keyCodeToString(std::uint32_t keyCode) {
  if (const auto name = keyCodeName(keyCode)) return std::string(*name);
  return "Key " + std::to_string(keyCode);
}

std::string HotkeyManager::displayString(std::uint32_t keyCode, std::uint32_t modifiers) {
  std::string text;
  if (modifiers & controlKey) text += "⌃";
  if (modifiers & optionKey) text += "⌥";
  if (modifiers & shiftKey) text += "⇧";
  if (modifiers & cmdKey) text += "⌘";
  return text + keyCodeToString(keyCode);
}

std::uint32_t HotkeyManager::carbonModifiers(platform::ModifierFlags flags) {
  std::uint32_t mask = 0;
  if (flags & platform::modifierCommand) mask |= cmdKey;
  if (flags & platform::modifierOption) mask |= optionKey;
  if (flags & platform::modifierControl) mask |= controlKey;
  if (flags & platform::modifierShift) mask |= shiftKey;
  return mask;
}

}  // namespace lumiscan
