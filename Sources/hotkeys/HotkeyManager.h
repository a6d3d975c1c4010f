#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hotkeys/HotkeyAction.h"
#include "platform/Event.h"
#include "platform/HotKeys.h"
#include "platform/Logger.h"

namespace lumiscan {

using platform::cmdKey;
using platform::controlKey;
using platform::optionKey;
using platform::shiftKey;

/// A key combination: a virtual key code (the physical key) and a mask of these modifiers.
struct HotkeyBinding {
  std::uint32_t keyCode = 0;
  std::uint32_t modifiers = 0;
  friend bool operator==(const HotkeyBinding&, const HotkeyBinding&) = default;
};

/// The bindings of the actions and their registration with the desktop. Main thread only.
class HotkeyManager {
 public:
  static HotkeyManager& shared();

  /// What to do when a hotkey fires; called from the main queue, never from inside the key event.
  std::function<void(HotkeyAction)> onAction;

  /// The action's binding as it is in force: the stored one, else the default; nothing when it has none or
  /// the stored text can't be read.
  std::optional<HotkeyBinding> hotkey(HotkeyAction action) const;
  /// Stores the binding, or with nothing removes it, which brings the default back; registers all hotkeys
  /// again and posts `settingsChanged`.
  void setHotkey(std::optional<HotkeyBinding> binding, HotkeyAction action);

  /// Drops all registrations and registers every bound action again. A refused combination is logged and
  /// tried again at the next call.
  void reregisterAll();
  void unregisterAll();

  /// The key's name, or "Key " and the number for a key without one.
  static std::string keyCodeToString(std::uint32_t keyCode);
  /// A binding as it is shown to the user, for example "⇧⌘2".
  static std::string displayString(std::uint32_t keyCode, std::uint32_t modifiers);
  /// The modifier bits of a binding for the flags of a key event; other flags add nothing.
  static std::uint32_t carbonModifiers(platform::ModifierFlags flags);

 private:
  void installHandlerIfNeeded();
  platform::HotKeyStatus handle(const platform::HotKeyEvent* event) const;

  std::vector<platform::HotKeyRef> hotKeyRefs_;
  bool handlerInstalled_ = false;
  platform::Logger logger_{"hotkeys"};
};

}  // namespace lumiscan
