#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

#include "platform/Event.h"

namespace lumiscan::desktop::x11 {

/// Which X modifiers the modifier keys set. Shift, Control and Caps Lock have a place of their own; Alt,
/// Super and the other locks are wherever the server's modifier mapping has put them. A value, to be read
/// anew when the mapping changes.
class ModifierMap {
 public:
  /// As the server has it now; takes two round trips. Of a server that doesn't answer: no Alt, no Super.
  static ModifierMap read(xcb_connection_t* connection);

  /// The X modifiers for a Carbon mask of Command (Super), Shift, Option (Alt) and Control; nothing when no
  /// key here sets one of them.
  std::optional<std::uint16_t> mask(std::uint32_t carbonModifiers) const;
  /// The event flags for the X modifiers of an event.
  platform::ModifierFlags flags(std::uint16_t state) const;
  /// The modifiers whose state says nothing about what the user holds: Caps Lock, Num Lock, Scroll Lock, and
  /// those that no key sets.
  std::uint16_t locks() const { return locks_; }

  friend bool operator==(const ModifierMap&, const ModifierMap&) = default;

 private:
  std::uint16_t option_ = 0;
  std::uint16_t command_ = 0;
  std::uint16_t locks_ = XCB_MOD_MASK_LOCK;
};

}  // namespace lumiscan::desktop::x11
