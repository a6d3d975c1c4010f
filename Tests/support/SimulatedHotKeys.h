#pragma once

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "platform/HotKeys.h"
#include "support/SimulatedDispatcher.h"

namespace lumiscan::testing {

/// Global hotkeys that a test presses.
class SimulatedHotKeys : public platform::HotKeys {
 public:
  explicit SimulatedHotKeys(SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  /// A virtual key code and a mask of modifiers.
  using Combination = std::pair<std::uint32_t, std::uint32_t>;
  struct Registration {
    Combination combination;
    platform::HotKeyID id;
    platform::HotKeyRef ref = 0;
  };

  void installEventHandler(Handler handler) override {
    handler_ = std::move(handler);
    ++handlersInstalled;
  }
  platform::HotKeyRegistration registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                   platform::HotKeyID id) override {
    constexpr std::uint32_t lastVirtualKeyCode = 0x7F;
    const Combination combination{keyCode, modifiers};
    if (keyCode > lastVirtualKeyCode) return {platform::hotKeyInvalidErr, 0};
    if (find(combination) != registrations_.end() || takenByOthers.contains(combination))
      return {platform::hotKeyExistsErr, 0};
    registrations_.push_back({combination, id, ++lastRef_});
    return {platform::noErr, lastRef_};
  }
  void unregisterEventHotKey(platform::HotKeyRef ref) override {
    std::erase_if(registrations_, [ref](const auto& registration) { return registration.ref == ref; });
  }

  /// The user presses the combination, as an event of its own. Returns whether the program holds it.
  bool press(std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto found = find({keyCode, modifiers});
    if (found == registrations_.end()) return false;
    const platform::HotKeyEvent event{found->id};
    dispatcher_.handleEvent([&] { deliver(&event); });
    return true;
  }
  /// Hands any event, or none, to the program's handler and returns its status.
  platform::HotKeyStatus deliver(const platform::HotKeyEvent* event) {
    return handler_ ? handler_(event) : platform::noErr;
  }
  /// The program's registrations in the order in which they were made.
  const std::vector<Registration>& registrations() const { return registrations_; }

  /// Combinations that other programs hold.
  std::set<Combination> takenByOthers;
  int handlersInstalled = 0;

 private:
  std::vector<Registration>::const_iterator find(const Combination& combination) const {
    return std::ranges::find(registrations_, combination, &Registration::combination);
  }

  SimulatedDispatcher& dispatcher_;
  Handler handler_;
  platform::HotKeyRef lastRef_ = 0;
  std::vector<Registration> registrations_;
};

}  // namespace lumiscan::testing
