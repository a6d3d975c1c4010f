#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace lumiscan::platform {

/// A status of the hotkey functions: 0 is success.
using HotKeyStatus = std::int32_t;
inline constexpr HotKeyStatus noErr = 0;
/// The combination is taken, by this program or another.
inline constexpr HotKeyStatus hotKeyExistsErr = -9878;
/// No key of that code on this desktop, or nothing to register it with.
inline constexpr HotKeyStatus hotKeyInvalidErr = -9879;

/// What a registered hotkey is known by, given at registration and read back from each press.
struct HotKeyID {
  std::uint32_t signature = 0;
  std::uint32_t id = 0;
  friend bool operator==(const HotKeyID&, const HotKeyID&) = default;
};

/// A press of a registered hotkey. The identifier is absent when it can't be read.
struct HotKeyEvent {
  std::optional<HotKeyID> hotKeyID;
};

/// A registration; 0 is none.
using HotKeyRef = std::uint64_t;

struct HotKeyRegistration {
  HotKeyStatus status = noErr;
  HotKeyRef ref = 0;
};

/// The modifiers of a combination, a Carbon mask: here the Super, Shift, Alt and Control keys.
inline constexpr std::uint32_t cmdKey = 0x0100;
inline constexpr std::uint32_t shiftKey = 0x0200;
inline constexpr std::uint32_t optionKey = 0x0800;
inline constexpr std::uint32_t controlKey = 0x1000;

/// Key combinations that reach the program whatever program has the focus. Main thread only.
///
/// Key codes are virtual key codes: physical keys in the `kVK_` numbering, whatever the keyboard layout.
/// Caps Lock and Num Lock don't matter.
class HotKeys {
 public:
  using Handler = std::function<HotKeyStatus(const HotKeyEvent*)>;

  virtual ~HotKeys() = default;

  /// Those of the installed desktop.
  static HotKeys& shared();

  /// Sets the one handler of all presses, for the rest of the program's life. It is called from the event
  /// loop, once a press however long the key is held.
  virtual void installEventHandler(Handler handler) = 0;

  /// Registers a combination. A combination that anyone holds, this program included, is refused with
  /// `hotKeyExistsErr`.
  virtual HotKeyRegistration registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                 HotKeyID id) = 0;

  /// An unknown reference is ignored. A combination that is registered again within the same event was
  /// never free in between, and no press of it is lost.
  virtual void unregisterEventHotKey(HotKeyRef ref) = 0;
};

}  // namespace lumiscan::platform
