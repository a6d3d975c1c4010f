#include "support/SimulatedHotKeys.h"

#include <algorithm>

#include "platform/Dispatch.h"
#include "support/SimulatedDispatcher.h"

namespace lumiscan::testing {

using platform::MainQueue::assertCurrent;

namespace {
constexpr std::uint32_t lastVirtualKeyCode = 0x7F;
}

void SimulatedHotKeys::installEventHandler(Handler handler) {
  assertCurrent();
  handler_ = std::move(handler);
  ++handlersInstalled;
}

platform::HotKeyRegistration SimulatedHotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                                   std::uint32_t modifiers,
                                                                   platform::HotKeyID id) {
  assertCurrent();
  const Combination combination{keyCode, modifiers};
  if (keyCode > lastVirtualKeyCode) return {platform::hotKeyInvalidErr, 0};
  const bool held = std::ranges::count(registrations_, combination, &Registration::combination) > 0;
  if (held || takenByOthers.contains(combination)) return {platform::hotKeyExistsErr, 0};
  registrations_.push_back({combination, id, ++lastRef_});
  return {platform::noErr, lastRef_};
}

void SimulatedHotKeys::unregisterEventHotKey(platform::HotKeyRef ref) {
  assertCurrent();
  const auto found = std::ranges::find(registrations_, ref, &Registration::ref);
  if (found == registrations_.end()) return;
  unregistered_.insert(found->combination);
  registrations_.erase(found);
}

void SimulatedHotKeys::releaseUnregistered() {
  for (const Registration& registration : registrations_) unregistered_.erase(registration.combination);
  released.insert(released.end(), unregistered_.begin(), unregistered_.end());
  unregistered_.clear();
}

bool SimulatedHotKeys::press(std::uint32_t keyCode, std::uint32_t modifiers) {
  const auto found =
      std::ranges::find(registrations_, Combination{keyCode, modifiers}, &Registration::combination);
  if (found == registrations_.end()) return false;
  const platform::HotKeyEvent event{found->id};
  dispatcher_.handleEvent([&] { deliver(&event); });
  return true;
}

platform::HotKeyStatus SimulatedHotKeys::deliver(const platform::HotKeyEvent* event) {
  return handler_ ? handler_(event) : platform::noErr;
}

}  // namespace lumiscan::testing
