// The launched program: how captures begin, and what every outcome does to the user's desktop, in which
// order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ControllerFixture.h"
#include "LaunchedProgram.h"
#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "recognition/SpeechService.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Effects = std::vector<std::string>;

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

struct OutcomeTest : LaunchedProgram {
  std::vector<std::string> history() {
    std::vector<std::string> entries;
    for (const CaptureRecord& record : HistoryStore::shared().items())
      entries.push_back(std::string(rawValue(record.mode)) + " " + record.text);
    return entries;
  }
  std::optional<std::string> buffer() {
    return desktop.userDefaults().stringForKey("additiveClipboardBuffer");
  }
};

constexpr const char* storeHistory = "store captureHistory";
constexpr const char* storeBuffer = "store additiveClipboardBuffer";

struct Outcome {  // NOLINT(clang-analyzer-optin.performance.Padding): it reads best in this order.
  const char* name;
  HotkeyAction action;
  std::vector<std::string> recognized;  ///< Lines, or payloads.
  std::string text;                     ///< What is copied and recorded.
  std::string message;                  ///< As the panel shows it.
  bool additive = false;
  bool keepLineBreaks = true;
  bool recognizersFail = false;
};

/// What the user and the next start of the program can tell, in its order.
Effects effectsOf(const Outcome& each) {
  if (each.recognized.empty()) return {"play Basso", "show exclamationmark.triangle.fill " + each.message};
  Effects effects;
  const bool appends = each.message.starts_with("Added");
  if (appends) effects.emplace_back(storeBuffer);
  effects.push_back((appends ? "pasteboard old\n" : "pasteboard ") + each.text);
  effects.insert(effects.end(), {storeHistory, "play Tink", "show checkmark.circle.fill " + each.message});
  if (each.action == HotkeyAction::captureAndSpeak) effects.push_back("speak de-DE " + each.text);
  return effects;
}

TEST_F(OutcomeTest, EachOutcomeHasItsEffectsInTheirOrder) {
  using enum HotkeyAction;
  const std::string added = "Added to additive clipboard / one";
  const Outcome outcomes[] = {
      {"text", captureText, {"one", " two"}, "one\n two", "Copied / one  two"},
      {"joined by the setting", captureText, {"one", " two"}, "one two", "Copied / one two", false, false},
      {"joined by the request", captureTextNoBreaks, {"one", " two"}, "one two", "Copied / one two"},
      {"blanks", captureText, {"  "}, "  ", "Copied /   "},
      {"blanks, joined", captureTextNoBreaks, {"  "}, "", "Copied"},
      {"invalid text", captureText, {"a\xFFz"}, "a\uFFFDz", "Copied / a\uFFFDz"},
      {"no text", captureText, {}, "", "No text recognized"},
      {"no engine", captureText, {}, "", "No text recognized", false, true, true},
      {"added to the buffer", captureText, {"one"}, "one", added, true},
      {"speech", captureAndSpeak, {"one"}, "one", "Copied / one"},
      {"speech, added to the buffer", captureAndSpeak, {"one"}, "one", added, true},
      {"speech without text", captureAndSpeak, {}, "", "No text recognized"},
      {"one code", captureBarcode, {"A"}, "A", "Code copied / A"},
      {"codes, not added", captureBarcode, {"A", "", "C\r\n"}, "A\n\nC\r\n", "Copied 3 codes / A", true},
      {"no code", captureBarcode, {}, "", "No QR or barcode found"},
      {"no detector", captureBarcode, {}, "", "No QR or barcode found", false, true, true},
  };
  desktop.userDefaults().setObject("recognitionLanguages", std::vector<std::string>{"de-DE", "en-US"});
  for (const Outcome& each : outcomes) {
    for (const bool sound : {true, false}) {
      SCOPED_TRACE(each.name);
      desktop.textRecognizer().recognizes(each.recognized);
      desktop.barcodeDetector().finds(each.recognized);
      if (each.recognizersFail) {
        desktop.textRecognizer().result = platform::Error{"no engine"};
        desktop.barcodeDetector().result = platform::Error{"no detector"};
      }
      Settings::setBool("additiveEnabled", each.additive);
      Settings::setBool("keepLineBreaksByDefault", each.keepLineBreaks);
      Settings::setBool("playSound", sound);
      desktop.userDefaults().setObject("additiveClipboardBuffer", std::string("old"));
      desktop.speechSynthesizer().utterances.clear();
      HistoryStore::shared().clear();
      desktop.effects().take();

      capture(each.action);
      Effects expected = effectsOf(each);
      if (!sound) std::erase_if(expected, [](const auto& effect) { return effect.starts_with("play "); });
      EXPECT_EQ(results(), expected);
      const std::string mode = each.action == captureBarcode    ? "barcode "
                               : each.action == captureAndSpeak ? "textToSpeech "
                                                                : "text ";
      EXPECT_EQ(history(), each.recognized.empty() ? Effects{} : Effects{mode + each.text});
    }
  }
}

TEST_F(OutcomeTest, WithoutAccessTheUserIsLedToTheSettings) {
  desktop.displays().accessGranted = false;
  press(HotkeyAction::captureText);
  EXPECT_THAT(desktop.textRecognizer().prepared, IsEmpty()) << "a refused request loads no recogniser";
  EXPECT_THAT(results(), ElementsAre("play Basso",
                                     "show exclamationmark.triangle.fill Screen Recording access required / "
                                     "Enable Lumiscan in System Settings › Privacy & Security"));
  EXPECT_EQ(desktop.displays().accessRequests, 1);
  EXPECT_THAT(desktop.workspace().opened,
              ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"));

  // Access granted meanwhile is seen at once; what fails all the same leads to the settings without asking.
  desktop.displays().accessGranted = true;
  capture(HotkeyAction::captureText);
  EXPECT_EQ(desktop.workspace().opened.size(), 1U);
  desktop.displays().detach(1);
  press(HotkeyAction::captureLastSelection);
  EXPECT_EQ(desktop.displays().accessRequests, 1);
  EXPECT_EQ(desktop.workspace().opened.size(), 2U);
}

TEST_F(OutcomeTest, TheAdditiveClipboardIsSwitchedContinuedAndCleared) {
  int posts = 0;
  const auto observation = desktop.notificationCenter().addObserver(settingsChanged, [&] { ++posts; });
  delegate->toggleAdditive();
  EXPECT_THAT(results(),
              ElementsAre("store additiveEnabled", "show checkmark.circle.fill Additive clipboard on"));
  EXPECT_EQ(posts, 1);
  for (const char* text : {"a", "b\nc", ""}) ClipboardService::appendAdditive(text);
  desktop.runMainQueue();
  EXPECT_EQ(buffer(), "a\nb\nc\n");
  EXPECT_EQ(desktop.pasteboard().text, "a\nb\nc\n");

  delegate->toggleAdditive();
  ClipboardService::copy("plain");
  desktop.runMainQueue();
  EXPECT_EQ(buffer(), "a\nb\nc\n") << "kept while off and by a plain copy";
  desktop.effects().take();
  delegate->clearAdditive();
  EXPECT_THAT(results(), ElementsAre(storeBuffer, "show checkmark.circle.fill Additive clipboard cleared"));
  EXPECT_EQ(buffer(), "");
  EXPECT_EQ(desktop.pasteboard().text, "plain");
  EXPECT_EQ(ClipboardService::appendAdditive(""), "");
  EXPECT_EQ(ClipboardService::appendAdditive("new"), "new");

  desktop.userDefaults().setObject("additiveClipboardBuffer", platform::Data{"bytes"});
  EXPECT_EQ(ClipboardService::appendAdditive("x"), "x") << "what isn't a string is no buffer";
}

TEST_F(OutcomeTest, HistoryEntriesAreCopiedAgainWhateverTheMode) {
  Settings::setBool("additiveEnabled", true);
  HistoryStore::shared().add({platform::UUID::random(), {}, CaptureMode::text, "long\ntext"});
  const std::string id = HistoryStore::shared().items()[0].id.uuidString();
  desktop.effects().take();
  platform::MenuItem entry;
  entry.representedObject = id;
  delegate->copyHistoryItem(entry);
  EXPECT_THAT(results(), ElementsAre("pasteboard long\ntext", "play Tink",
                                     "show checkmark.circle.fill Copied from history / long text"));
  EXPECT_EQ(history().size(), 1U);
  HistoryStore::shared().clear();
  desktop.effects().take();
  for (const std::optional<std::string>& object : {std::optional(id), {"no id"}, {}}) {
    entry.representedObject = object;
    delegate->copyHistoryItem(entry);
  }
  EXPECT_THAT(results(), IsEmpty());
}

TEST_F(OutcomeTest, SpeechIsReplacedAndStoppedButNotByNothing) {
  auto& speech = SpeechService::shared();
  speech.stop();
  speech.speak("first", "en-US");
  speech.speak("", "en-US");
  EXPECT_THAT(results(), ElementsAre("speak en-US first")) << "stop while idle and empty texts do nothing";
  speech.speak("second", "");
  speech.speak("third", std::nullopt);
  delegate->stopSpeaking();
  EXPECT_THAT(results(), ElementsAre("stop speaking", "speak by default second", "stop speaking",
                                     "speak by default third", "stop speaking"));
}

}  // namespace
}  // namespace lumiscan
