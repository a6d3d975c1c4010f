#pragma once

#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {

/// The simulated desktop under the tests of what every desktop does alike. Those speak to the installed
/// desktop through the platform's own interfaces; what only the surroundings of a desktop can do or see is a
/// function here. At first it holds no preferences, hotkeys or cursors.
class ContractDesktop {
 public:
  /// Returns when the main queue has run everything that is due.
  void processEvents() { desktop_->runMainQueue(); }
  /// Lets at least `seconds` pass, handling events meanwhile.
  void passTime(double seconds) { desktop_->advance(seconds); }
  /// Returns when the detached tasks have run, and then the main queue.
  void waitForBackgroundTasks() { desktop_->settle(); }
  /// Puts a new desktop in place of the old one, as if the program had ended and started again.
  void restart() {
    desktop_ = nullptr;
    desktop_ = std::make_unique<SimulatedDesktop>(preferences_);
  }
  /// The text on the pasteboard as another program reads it; nothing when there is no text.
  std::optional<std::string> pasteboardText() { return desktop_->pasteboard().text; }
  /// The pushed cursor that shows; nothing when none is pushed.
  std::optional<platform::CursorShape> pushedCursor() {
    const auto& pushed = desktop_->cursors().pushed;
    return pushed.empty() ? std::nullopt : std::optional(pushed.back());
  }
  /// The user presses a key with modifiers (a Carbon mask), and what that starts has been handled.
  void pressKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    desktop_->hotKeys().press(keyCode, modifiers);
    desktop_->settle();
  }
  /// Another program takes the combination, until this object goes.
  void takeHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    desktop_->hotKeys().takenByOthers.insert({keyCode, modifiers});
  }

 private:
  std::shared_ptr<Preferences> preferences_ = std::make_shared<Preferences>();
  std::unique_ptr<SimulatedDesktop> desktop_ = std::make_unique<SimulatedDesktop>(preferences_);
};

}  // namespace lumiscan::testing
