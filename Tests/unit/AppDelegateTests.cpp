#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ControllerFixture.h"
#include "LaunchedProgram.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using AppDelegateTest = LaunchedProgram;

TEST_F(AppDelegateTest, RecognizesAndDecodesOffTheMainThreadInTheUsersLanguages) {
  desktop.userDefaults().setObject("recognitionLanguages", std::vector<std::string>{"de-DE", "en-US"});
  desktop.textRecognizer().recognizes({"text"});
  press(HotkeyAction::captureText);
  EXPECT_THAT(desktop.textRecognizer().prepared, ElementsAre(ElementsAre("de-DE", "en-US")))
      << "the recogniser gets ready during the drag";
  desktop.windows().dragMouse({100, 200}, {400, 350});
  EXPECT_EQ(desktop.pasteboard().text, "before");
  desktop.settle();
  EXPECT_EQ(desktop.pasteboard().text, "text");
  EXPECT_EQ(desktop.pasteboard().changeCount, 1);
  capture(HotkeyAction::captureBarcode);

  ASSERT_EQ(desktop.textRecognizer().requests.size(), 1U);
  const auto& text = desktop.textRecognizer().requests[0];
  EXPECT_EQ(describe(text.image), "100,550 300×150");
  EXPECT_THAT(text.asked.recognitionLanguages, ElementsAre("de-DE", "en-US"));
  EXPECT_FALSE(text.onMainThread);
  EXPECT_EQ(desktop.textRecognizer().prepared.size(), 1U);
  ASSERT_EQ(desktop.barcodeDetector().requests.size(), 1U);
  EXPECT_EQ(describe(desktop.barcodeDetector().requests[0].image), "100,550 300×150");
  EXPECT_FALSE(desktop.barcodeDetector().requests[0].onMainThread);
}

TEST_F(AppDelegateTest, RequestsOpenASessionWithAHintOrRepeatTheLastSelection) {
  desktop.textRecognizer().recognizes({"text"});
  press(HotkeyAction::captureLastSelection);
  EXPECT_THAT(results(), ElementsAre("show exclamationmark.triangle.fill No previous selection yet"));
  EXPECT_THAT(overlays(), IsEmpty());
  for (const auto action : {HotkeyAction::captureText, HotkeyAction::captureTextNoBreaks,
                            HotkeyAction::captureAndSpeak, HotkeyAction::captureBarcode}) {
    desktop.effects().take();
    press(action);
    EXPECT_EQ(overlays().size(), 1U);
    EXPECT_THAT(desktop.effects().take(),
                ElementsAre("show text.magnifyingglass Drag to select an area / Esc or click cancels"));
  }
  desktop.windows().keyDown(platform::keyCodeEscape);
  desktop.settle();
  EXPECT_THAT(results(), IsEmpty()) << "a cancelled session says nothing";
  desktop.advance(2.4);
  EXPECT_EQ(desktop.windows().visible().size(), 1U) << "shows for 2.2 seconds and fades";
  desktop.advance(0.1);
  EXPECT_THAT(desktop.windows().visible(), IsEmpty());
  capture(HotkeyAction::captureAndSpeak);
  EXPECT_EQ(desktop.pasteboard().changeCount, 1);

  desktop.effects().take();
  press(HotkeyAction::captureLastSelection);
  EXPECT_THAT(desktop.effects().take(), ElementsAre("pasteboard text", "store captureHistory", "play Tink",
                                                    "show checkmark.circle.fill Copied / text"))
      << "a repeat opens no session and shows no hint";
  EXPECT_EQ(describe(desktop.textRecognizer().requests.back().image), "100,550 300×150");
}

TEST_F(AppDelegateTest, NothingHappensOnceTheDelegateIsGone) {
  desktop.textRecognizer().recognizes({"text"});
  press(HotkeyAction::captureText);
  desktop.windows().dragMouse({100, 200}, {400, 350});
  desktop.runBackgroundTasks();
  desktop.runMainQueue();
  EXPECT_EQ(desktop.dispatcher().backgroundTaskCount(), 1U) << "about to recognise";
  desktop.application().setDelegate(nullptr);
  delegate = nullptr;
  desktop.settle();
  EXPECT_THAT(desktop.textRecognizer().requests, IsEmpty());
  EXPECT_EQ(desktop.pasteboard().changeCount, 0);
  press(HotkeyAction::captureText);
  EXPECT_THAT(overlays(), IsEmpty());
}

TEST_F(AppDelegateTest, LaunchRegistersTheHotkeysAndKeepsThemRegistered) {
  EXPECT_TRUE(desktop.application().suddenTerminationDisabled);
  const auto registered = [this] { return desktop.hotKeys().registrations().size(); };
  EXPECT_EQ(registered(), 5U);

  // Lost registrations come back.
  for (int firing = 1; firing <= 3; ++firing) {
    HotkeyManager::shared().unregisterAll();
    desktop.advance(29.5);
    EXPECT_EQ(registered(), 0U);
    desktop.advance(0.5);
    EXPECT_EQ(registered(), 5U) << "after " << 30 * firing << " seconds";
  }
  for (const auto occasion : {platform::screensDidWake, platform::sessionDidBecomeActive}) {
    HotkeyManager::shared().unregisterAll();
    desktop.workspaceNotificationCenter().post(occasion);
    EXPECT_EQ(registered(), 5U) << occasion;
  }
}

}  // namespace
}  // namespace lumiscan
