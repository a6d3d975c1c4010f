#pragma once

#include <string_view>

namespace lumiscan::platform {

/// The desktop's short sounds. Main thread only.
class Sounds {
 public:
  virtual ~Sounds() = default;

  /// Those of the installed desktop.
  static Sounds& shared();

  /// Starts the sound of that name, "Tink" or "Basso", and returns at once. A name that yields no sound, or
  /// a desktop that can't play any, is silent.
  virtual void play(std::string_view name) = 0;

  /// Starts the desktop's alert sound and returns at once.
  virtual void beep() = 0;
};

}  // namespace lumiscan::platform
