#pragma once

#include <vector>

#include "contract/DesktopFixture.h"
#include "platform/HotKeys.h"
#include "platform/Pasteboard.h"

namespace lumiscan::testing {

/// The cursor stack, the pasteboard and the hotkeys.
template <typename Fixture>
class InputOutputContract : public ContractTest<Fixture> {
 protected:
  static constexpr std::uint32_t controlOptionCommand = 0x1900;
  static constexpr std::uint32_t keyR = 15;
  static constexpr std::uint32_t keyB = 11;

  static void copy(std::string_view text) {
    platform::Pasteboard::general().clearContents();
    platform::Pasteboard::general().setString(text);
  }
  static platform::HotKeyRegistration registerHotKey(std::uint32_t keyCode, std::uint32_t id) {
    return platform::HotKeys::shared().registerEventHotKey(keyCode, controlOptionCommand, {1, id});
  }
  void press(std::uint32_t keyCode) { this->desktop.pressKey(keyCode, controlOptionCommand); }

  /// Records the identifiers of the presses from now on.
  void recordPresses() {
    platform::HotKeys::shared().installEventHandler([this](const platform::HotKeyEvent* event) {
      pressed.push_back(event && event->hotKeyID ? event->hotKeyID->id : 0);
      return platform::noErr;
    });
  }
  std::vector<std::uint32_t> pressed;
};
TYPED_TEST_SUITE_P(InputOutputContract);

TYPED_TEST_P(InputOutputContract, CursorsShowTheLastPushedUntilPopped) {
  using platform::CursorShape;
  auto& cursors = platform::CursorStack::shared();
  cursors.pop();
  EXPECT_EQ(this->desktop.pushedCursor(), std::nullopt);
  cursors.push(CursorShape::crosshair);
  cursors.push(CursorShape::arrow);
  EXPECT_EQ(this->desktop.pushedCursor(), CursorShape::arrow);
  cursors.pop();
  EXPECT_EQ(this->desktop.pushedCursor(), CursorShape::crosshair);
  cursors.pop();
  EXPECT_EQ(this->desktop.pushedCursor(), std::nullopt);
}

TYPED_TEST_P(InputOutputContract, OtherProgramsReadTheTextOfThePasteboard) {
  struct Case {
    std::string written;
    std::string read;
  };
  const std::vector<Case> cases = {
      {"first", "first"},
      {"two\nlines\n", "two\nlines\n"},
      {"größer 文字 𝄞", "größer 文字 𝄞"},
      {"a\xFF"
       "b",
       "a\uFFFDb"},
      {"", ""},
  };
  for (const Case& each : cases) {
    this->copy(each.written);
    this->desktop.processEvents();
    EXPECT_EQ(this->desktop.pasteboardText(), each.read);
  }
  platform::Pasteboard::general().clearContents();
  this->desktop.processEvents();
  EXPECT_EQ(this->desktop.pasteboardText(), std::nullopt);
}

TYPED_TEST_P(InputOutputContract, HotKeysReportTheirIdentifierOncePerPress) {
  this->recordPresses();
  const auto first = this->registerHotKey(this->keyR, 1);
  const auto second = this->registerHotKey(this->keyB, 2);
  EXPECT_EQ(first.status, platform::noErr);
  EXPECT_EQ(second.status, platform::noErr);
  EXPECT_NE(first.ref, 0U);
  EXPECT_NE(first.ref, second.ref);
  this->press(this->keyB);
  this->press(this->keyR);
  this->press(this->keyB);
  this->desktop.pressKey(this->keyR, platform::cmdKey);
  EXPECT_EQ(this->pressed, (std::vector<std::uint32_t>{2, 1, 2}));
}

TYPED_TEST_P(InputOutputContract, HotKeysHeldByAnyoneAreRefused) {
  this->recordPresses();
  const auto first = this->registerHotKey(this->keyR, 1);
  const auto duplicate = this->registerHotKey(this->keyR, 2);
  EXPECT_EQ(duplicate.status, platform::hotKeyExistsErr);
  EXPECT_EQ(duplicate.ref, 0U);
  this->press(this->keyR);
  EXPECT_EQ(this->pressed, std::vector<std::uint32_t>{1}) << "the first registration stays in force";

  this->desktop.takeHotKey(this->keyB, this->controlOptionCommand);
  EXPECT_EQ(this->registerHotKey(this->keyB, 3).status, platform::hotKeyExistsErr);
  EXPECT_EQ(this->registerHotKey(4000, 4).status, platform::hotKeyInvalidErr);

  platform::HotKeys::shared().unregisterEventHotKey(first.ref + 1000);
  platform::HotKeys::shared().unregisterEventHotKey(0);
  this->press(this->keyR);
  EXPECT_EQ(this->pressed.size(), 2U) << "unknown references are ignored";
}

TYPED_TEST_P(InputOutputContract, HotKeysMayBeRegisteredAgainAtOnce) {
  this->recordPresses();
  const auto first = this->registerHotKey(this->keyR, 1);
  platform::HotKeys::shared().unregisterEventHotKey(first.ref);
  const auto again = this->registerHotKey(this->keyR, 2);
  EXPECT_EQ(again.status, platform::noErr);
  this->desktop.processEvents();
  this->press(this->keyR);
  EXPECT_EQ(this->pressed, std::vector<std::uint32_t>{2});

  platform::HotKeys::shared().unregisterEventHotKey(again.ref);
  this->desktop.processEvents();
  this->press(this->keyR);
  EXPECT_EQ(this->pressed.size(), 1U) << "an unregistered hotkey reports nothing";
}

REGISTER_TYPED_TEST_SUITE_P(InputOutputContract, CursorsShowTheLastPushedUntilPopped,
                            OtherProgramsReadTheTextOfThePasteboard, HotKeysReportTheirIdentifierOncePerPress,
                            HotKeysHeldByAnyoneAreRefused, HotKeysMayBeRegisteredAgainAtOnce);

}  // namespace lumiscan::testing
