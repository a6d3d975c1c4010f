#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/Cursor.h"

// What every desktop does alike, as tests that a simulated and a real desktop both run. The tests speak to
// the installed desktop through the platform's own interfaces; what only the surroundings of a desktop can
// do or see is a hook of the fixture.

namespace lumiscan::testing {

/// A fixture installs a desktop when it is made and takes it out when it goes. Its desktop holds no
/// preferences, hotkeys or cursors of an earlier fixture, nor any of the developer's own.
template <typename Fixture>
concept DesktopFixture = std::default_initializable<Fixture> &&
    requires(Fixture fixture, double seconds, std::uint32_t keyCode, std::uint32_t modifiers) {
  /// Returns when the main queue has run everything that is due.
  fixture.processEvents();
  /// Lets at least `seconds` pass, handling events meanwhile.
  fixture.passTime(seconds);
  /// Returns when the detached tasks have run, and then the main queue.
  fixture.waitForBackgroundTasks();
  /// Puts a new desktop in place of the old one, as if the program had ended and started again.
  fixture.restart();
  /// The text on the pasteboard as another program reads it; nothing when there is no text.
  { fixture.pasteboardText() } -> std::same_as<std::optional<std::string>>;
  /// The pushed cursor that shows; nothing when none is pushed.
  { fixture.pushedCursor() } -> std::same_as<std::optional<platform::CursorShape>>;
  /// The user presses a key with modifiers (a Carbon mask), and what that starts has been handled.
  fixture.pressKey(keyCode, modifiers);
  /// Another program takes the combination, until the fixture goes.
  fixture.takeHotKey(keyCode, modifiers);
};

template <DesktopFixture Fixture>
class ContractTest : public ::testing::Test {
 protected:
  Fixture desktop;
};

}  // namespace lumiscan::testing
