#pragma once

#include <set>
#include <utility>
#include <vector>

#include "platform/HotKeys.h"

namespace lumiscan::testing {

class SimulatedDispatcher;

/// Global hotkeys that a test presses.
class SimulatedHotKeys : public platform::HotKeys {
 public:
  explicit SimulatedHotKeys(SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  struct Combination {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    friend bool operator==(const Combination&, const Combination&) = default;
    friend bool operator<(const Combination& a, const Combination& b) {
      return std::pair(a.keyCode, a.modifiers) < std::pair(b.keyCode, b.modifiers);
    }
  };
  struct Registration {
    Combination combination;
    platform::HotKeyID id;
    platform::HotKeyRef ref = 0;
  };

  void installEventHandler(Handler handler) override;
  platform::HotKeyRegistration registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                   platform::HotKeyID id) override;
  void unregisterEventHotKey(platform::HotKeyRef ref) override;

  /// The user presses the combination, as an event of its own. Returns whether the program holds it.
  bool press(std::uint32_t keyCode, std::uint32_t modifiers);
  /// Hands any event, or none, to the program's handler and returns its status.
  platform::HotKeyStatus deliver(const platform::HotKeyEvent* event);
  /// The program's registrations in the order in which they were made.
  const std::vector<Registration>& registrations() const { return registrations_; }
  /// Called when an event has been handled: what isn't registered again is free for other programs.
  void releaseUnregistered();

  /// Combinations that other programs hold.
  std::set<Combination> takenByOthers;
  /// Every combination that became free for other programs, in order.
  std::vector<Combination> released;
  int handlersInstalled = 0;

 private:
  SimulatedDispatcher& dispatcher_;
  Handler handler_;
  platform::HotKeyRef lastRef_ = 0;
  std::vector<Registration> registrations_;
  std::set<Combination> unregistered_;
};

}  // namespace lumiscan::testing
