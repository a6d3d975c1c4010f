#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CaptureDescription.h"
#include "app/AppDelegate.h"
#include "hotkeys/HotkeyManager.h"
#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A message panel that writes down what it is to show.
class RecordingHUD : public ResultHUD {
 public:
  explicit RecordingHUD(std::vector<std::string>& shown) : shown_(shown) {}
  void show(const std::string& title, const std::optional<std::string>& preview, bool isError,
            const std::optional<std::string>& icon, std::optional<double> duration) override {
    shown_.push_back(title + " / " + preview.value_or("no preview") + (isError ? " / error / " : " / ") +
                     icon.value_or("no icon") + " / " + std::to_string(duration.value_or(0)));
  }

 private:
  std::vector<std::string>& shown_;
};

/// The launched program, used by its hotkeys and the mouse.
class AppDelegateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    desktop.userDefaults().setObject("hotkey.captureTextNoBreaks", std::string("2,256"));
    desktop.application().setDelegate(delegate.get());
    desktop.application().run();
    desktop.pasteboard().takeOver("before");
  }
  void press(HotkeyAction action) {
    const auto binding = HotkeyManager::shared().hotkey(action);
    ASSERT_TRUE(binding);
    ASSERT_TRUE(desktop.hotKeys().press(binding->keyCode, binding->modifiers));
    desktop.settle();
  }
  void capture(HotkeyAction action) {
    press(action);
    desktop.windows().dragMouse({100, 200}, {400, 350});
    desktop.settle();
  }

  testing::SimulatedDesktop desktop;
  std::vector<std::string> shown;
  std::shared_ptr<AppDelegate> delegate =
      std::make_shared<AppDelegate>(std::make_unique<RecordingHUD>(shown));
};

TEST_F(AppDelegateTest, HotkeyAndDragPutTheTextOnThePasteboard) {
  desktop.userDefaults().setObject("recognitionLanguages", std::vector<std::string>{"de-DE", "en-US"});
  desktop.textRecognizer().recognizes({"first line", "second line"});
  press(HotkeyAction::captureText);
  EXPECT_EQ(desktop.windows().visible().size(), 1U);
  EXPECT_THAT(desktop.textRecognizer().prepared, ElementsAre(ElementsAre("de-DE", "en-US")))
      << "the recogniser gets ready during the drag";
  desktop.windows().dragMouse({100, 200}, {400, 350});
  EXPECT_EQ(desktop.pasteboard().text, "before");
  desktop.settle();
  EXPECT_EQ(desktop.pasteboard().text, "first line\nsecond line");
  EXPECT_EQ(desktop.pasteboard().changeCount, 1);

  ASSERT_EQ(desktop.textRecognizer().requests.size(), 1U);
  const auto& request = desktop.textRecognizer().requests[0];
  EXPECT_EQ(describe(request.image), "100,550 300×150");
  EXPECT_THAT(request.request.recognitionLanguages, ElementsAre("de-DE", "en-US"));
  EXPECT_FALSE(request.onMainThread);
  EXPECT_THAT(desktop.barcodeDetector().requests, IsEmpty());
}

TEST_F(AppDelegateTest, LineBreaksFollowTheRequestOrElseTheSetting) {
  struct Case {
    HotkeyAction action;
    std::optional<bool> keepSetting;
    const char* text;
  };
  desktop.textRecognizer().recognizes({" one", "two "});
  for (const Case& each : {Case{HotkeyAction::captureText, std::nullopt, " one\ntwo "},
                           Case{HotkeyAction::captureText, true, " one\ntwo "},
                           Case{HotkeyAction::captureText, false, "one two"},
                           Case{HotkeyAction::captureTextNoBreaks, true, "one two"},
                           Case{HotkeyAction::captureTextNoBreaks, false, "one two"}}) {
    if (each.keepSetting) Settings::setBool(Settings::keepLineBreaksByDefaultKey, *each.keepSetting);
    capture(each.action);
    EXPECT_EQ(desktop.pasteboard().text, each.text);
  }
}

TEST_F(AppDelegateTest, BlankTextCountsAsTextUntilItIsJoined) {
  desktop.textRecognizer().recognizes({"  "});
  capture(HotkeyAction::captureText);
  EXPECT_EQ(desktop.pasteboard().text, "  ");
  capture(HotkeyAction::captureTextNoBreaks);
  EXPECT_EQ(desktop.pasteboard().text, "");
}

TEST_F(AppDelegateTest, BarcodePayloadsAreJoinedByLineFeeds) {
  desktop.textRecognizer().recognizes({"text"});
  desktop.barcodeDetector().finds({"A", "", "B\r\n"});
  Settings::setBool(Settings::keepLineBreaksByDefaultKey, false);
  capture(HotkeyAction::captureBarcode);
  EXPECT_EQ(desktop.pasteboard().text, "A\n\nB\r\n");
  ASSERT_EQ(desktop.barcodeDetector().requests.size(), 1U);
  EXPECT_EQ(describe(desktop.barcodeDetector().requests[0].image), "100,550 300×150");
  EXPECT_FALSE(desktop.barcodeDetector().requests[0].onMainThread);
  EXPECT_THAT(desktop.textRecognizer().requests, IsEmpty());
  EXPECT_THAT(desktop.textRecognizer().prepared, IsEmpty());
}

TEST_F(AppDelegateTest, NothingFoundLeavesThePasteboardAlone) {
  capture(HotkeyAction::captureText);
  capture(HotkeyAction::captureBarcode);
  desktop.textRecognizer().result = platform::Error{"no engine"};
  desktop.barcodeDetector().result = platform::Error{"no detector"};
  capture(HotkeyAction::captureText);
  capture(HotkeyAction::captureBarcode);
  EXPECT_EQ(desktop.textRecognizer().requests.size() + desktop.barcodeDetector().requests.size(), 4U);

  desktop.textRecognizer().recognizes({"text"});
  press(HotkeyAction::captureText);
  desktop.windows().keyDown(platform::keyCodeEscape);
  desktop.displays().setImage(1, std::nullopt);
  capture(HotkeyAction::captureText);
  desktop.displays().accessGranted = false;
  press(HotkeyAction::captureText);
  EXPECT_THAT(desktop.windows().visible(), IsEmpty());
  EXPECT_EQ(desktop.textRecognizer().prepared.size(), 4U) << "a refused request loads no recogniser";
  EXPECT_EQ(desktop.pasteboard().text, "before");
  EXPECT_EQ(desktop.pasteboard().changeCount, 0);
}

TEST_F(AppDelegateTest, RequestsOpenASessionWithAHintOrRepeatTheLastSelection) {
  desktop.textRecognizer().recognizes({"text"});
  press(HotkeyAction::captureLastSelection);
  EXPECT_THAT(desktop.windows().visible(), IsEmpty()) << "nothing is stored yet";
  EXPECT_THAT(shown, IsEmpty());
  for (const auto action : {HotkeyAction::captureText, HotkeyAction::captureTextNoBreaks,
                            HotkeyAction::captureAndSpeak, HotkeyAction::captureBarcode}) {
    press(action);
    EXPECT_EQ(desktop.windows().visible().size(), 1U);
    EXPECT_EQ(shown.back(),
              "Drag to select an area / Esc or click cancels / text.magnifyingglass / 2.200000");
  }
  desktop.windows().keyDown(platform::keyCodeEscape);
  capture(HotkeyAction::captureAndSpeak);
  EXPECT_EQ(desktop.pasteboard().changeCount, 1);
  EXPECT_EQ(shown.size(), 5U);

  press(HotkeyAction::captureLastSelection);
  EXPECT_THAT(desktop.windows().visible(), IsEmpty());
  EXPECT_EQ(shown.size(), 5U) << "a repeat shows no hint";
  EXPECT_EQ(desktop.pasteboard().changeCount, 2);
  EXPECT_EQ(describe(desktop.textRecognizer().requests.back().image), "100,550 300×150");
}

TEST_F(AppDelegateTest, WithoutAccessTheUserIsLedToTheSettings) {
  desktop.displays().accessGranted = false;
  press(HotkeyAction::captureText);
  EXPECT_EQ(desktop.displays().accessRequests, 1);
  EXPECT_THAT(desktop.workspace().opened,
              ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"));
  EXPECT_THAT(shown, IsEmpty()) << "no hint to drag";

  // Access granted meanwhile is seen at once; what fails all the same leads to the settings without asking.
  desktop.displays().accessGranted = true;
  capture(HotkeyAction::captureText);
  EXPECT_EQ(desktop.workspace().opened.size(), 1U);
  desktop.displays().detach(1);
  press(HotkeyAction::captureLastSelection);
  EXPECT_EQ(desktop.displays().accessRequests, 1);
  EXPECT_EQ(desktop.workspace().opened.size(), 2U);
}

TEST_F(AppDelegateTest, OverlappingCapturesFinishEachWithItsOwnResult) {
  desktop.textRecognizer().recognizes({"text"});
  desktop.barcodeDetector().finds({"payload"});
  press(HotkeyAction::captureText);
  desktop.windows().dragMouse({100, 200}, {400, 350});
  desktop.hotKeys().press(11, 6400);
  desktop.runMainQueue();
  desktop.windows().dragMouse({0, 0}, {50, 50});
  desktop.settle();
  EXPECT_EQ(desktop.pasteboard().changeCount, 2);
  EXPECT_EQ(desktop.pasteboard().text, "payload");
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
  EXPECT_THAT(desktop.windows().visible(), IsEmpty());
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
