#pragma once

#include <cstdint>

#include "platform/Geometry.h"

namespace lumiscan::platform {

/// The keys that modify others, as bits. The low 16 bits of a flag set are the desktop's own.
using ModifierFlags = std::uint64_t;
inline constexpr ModifierFlags modifierCapsLock = 1U << 16;
inline constexpr ModifierFlags modifierShift = 1U << 17;
inline constexpr ModifierFlags modifierControl = 1U << 18;
inline constexpr ModifierFlags modifierOption = 1U << 19;
inline constexpr ModifierFlags modifierCommand = 1U << 20;

/// Virtual key codes with a meaning of their own: physical keys in the `kVK_` numbering.
inline constexpr std::uint16_t keyCodePeriod = 47;
inline constexpr std::uint16_t keyCodeEscape = 53;
/// Stands for every key that has no virtual key code.
inline constexpr std::uint16_t keyCodeNone = 0xFFFF;

/// A press, a move or a release of the primary mouse button.
struct MouseEvent {
  /// Points, origin at the bottom left of the window, y upwards.
  Point locationInWindow;

  /// Where the mouse is now, in the global screen space: points, origin at the bottom left of the primary
  /// screen, y upwards. Main thread.
  static Point mouseLocation();
};

/// A press of a key, or a repeat of one that is held: those aren't told apart.
struct KeyEvent {
  /// The physical key, or `keyCodeNone`.
  std::uint16_t keyCode = 0;
  ModifierFlags modifierFlags = 0;
};

}  // namespace lumiscan::platform
