// The cursor stack, the pasteboard and the hotkeys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "ContractDesktop.h"
#include "platform/Cursor.h"
#include "platform/HotKeys.h"
#include "platform/Pasteboard.h"

namespace lumiscan::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t controlOptionCommand = 0x1900;
constexpr std::uint32_t keyR = 15;
constexpr std::uint32_t keyB = 11;

struct InputOutputContract : ::testing::Test {
  InputOutputContract() {
    platform::HotKeys::shared().installEventHandler([this](const platform::HotKeyEvent* event) {
      pressed.push_back(event && event->hotKeyID ? event->hotKeyID->id : 0);
      return platform::noErr;
    });
  }

  static platform::HotKeyRegistration registerHotKey(std::uint32_t keyCode, std::uint32_t id) {
    return platform::HotKeys::shared().registerEventHotKey(keyCode, controlOptionCommand, {1, id});
  }
  static void unregister(platform::HotKeyRef ref) { platform::HotKeys::shared().unregisterEventHotKey(ref); }
  /// The identifiers that presses of the key with these modifiers report.
  std::vector<std::uint32_t> press(std::uint32_t keyCode, std::uint32_t modifiers = controlOptionCommand) {
    pressed.clear();
    desktop.pressKey(keyCode, modifiers);
    return pressed;
  }

  ContractDesktop desktop;
  std::vector<std::uint32_t> pressed;
};

TEST_F(InputOutputContract, CursorsShowTheLastPushedUntilPopped) {
  using platform::CursorShape;
  auto& cursors = platform::CursorStack::shared();
  cursors.pop();
  EXPECT_EQ(desktop.pushedCursor(), std::nullopt);
  cursors.push(CursorShape::crosshair);
  cursors.push(CursorShape::arrow);
  EXPECT_EQ(desktop.pushedCursor(), CursorShape::arrow);
  cursors.pop();
  EXPECT_EQ(desktop.pushedCursor(), CursorShape::crosshair);
  cursors.pop();
  EXPECT_EQ(desktop.pushedCursor(), std::nullopt);
}

TEST_F(InputOutputContract, OtherProgramsReadTheTextOfThePasteboard) {
  auto& pasteboard = platform::Pasteboard::general();
  for (const auto& [written, read] : {std::pair("two\nlines\n", "two\nlines\n"),
                                      {"größer 文字 𝄞", "größer 文字 𝄞"},
                                      {"a\xFFz", "a\uFFFDz"},
                                      {"", ""}}) {
    pasteboard.clearContents();
    pasteboard.setString(written);
    desktop.processEvents();
    EXPECT_EQ(desktop.pasteboardText(), read);
  }
  pasteboard.clearContents();
  desktop.processEvents();
  EXPECT_EQ(desktop.pasteboardText(), std::nullopt);
}

TEST_F(InputOutputContract, HotKeysReportTheirIdentifierOncePerPressUntilUnregistered) {
  const auto first = registerHotKey(keyR, 1);
  const auto second = registerHotKey(keyB, 2);
  EXPECT_EQ(first.status, platform::noErr);
  EXPECT_EQ(second.status, platform::noErr);
  EXPECT_NE(first.ref, 0U);
  EXPECT_NE(first.ref, second.ref);
  EXPECT_THAT(press(keyB), ElementsAre(2));
  EXPECT_THAT(press(keyR), ElementsAre(1));
  EXPECT_THAT(press(keyR, platform::cmdKey), IsEmpty());

  unregister(first.ref);
  const auto again = registerHotKey(keyR, 3);
  EXPECT_EQ(again.status, platform::noErr) << "at once";
  desktop.processEvents();
  EXPECT_THAT(press(keyR), ElementsAre(3));
  unregister(again.ref);
  desktop.processEvents();
  EXPECT_THAT(press(keyR), IsEmpty());
}

TEST_F(InputOutputContract, HotKeysHeldByAnyoneAreRefused) {
  registerHotKey(keyR, 1);
  const auto duplicate = registerHotKey(keyR, 2);
  EXPECT_EQ(duplicate.status, platform::hotKeyExistsErr);
  EXPECT_EQ(duplicate.ref, 0U);
  desktop.takeHotKey(keyB, controlOptionCommand);
  EXPECT_EQ(registerHotKey(keyB, 3).status, platform::hotKeyExistsErr);
  EXPECT_EQ(registerHotKey(4000, 4).status, platform::hotKeyInvalidErr);
  for (const platform::HotKeyRef unknown : {0U, 1000U}) unregister(unknown);
  EXPECT_THAT(press(keyR), ElementsAre(1)) << "the first registration stays in force";
}

}  // namespace
}  // namespace lumiscan::testing
