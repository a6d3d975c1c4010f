#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace lumiscan::desktop::x11 {

/// The X key code of the physical key with a virtual key code; nothing when no keyboard here has it.
std::optional<xcb_keycode_t> keycode(std::uint32_t virtualKeyCode);
/// The virtual key code of a physical key; nothing for a key that has none.
std::optional<std::uint16_t> virtualKeyCode(xcb_keycode_t keycode);
/// Whether the user's layout makes a key Escape, as some do with Caps Lock. Takes a round trip.
bool isEscape(xcb_connection_t* connection, xcb_keycode_t keycode);

}  // namespace lumiscan::desktop::x11
