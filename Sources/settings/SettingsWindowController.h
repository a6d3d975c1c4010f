#pragma once

#include <memory>

#include "platform/Window.h"

namespace lumiscan {

/// The settings window, made when it is first shown and kept from then on: closing only hides it. Main thread
/// only.
class SettingsWindowController {
 public:
  /// Null before it was first shown.
  platform::Window* window() const { return window_.get(); }

  /// Brings the window to the front, with the keyboard focus.
  void show();

 private:
  std::shared_ptr<platform::Window> window_;
};

}  // namespace lumiscan
