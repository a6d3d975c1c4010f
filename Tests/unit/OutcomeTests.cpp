// What every outcome does to the user's desktop, and in which order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LaunchedProgram.h"
#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "recognition/SpeechService.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Effects = std::vector<std::string>;

class OutcomeTest : public LaunchedProgram {
 protected:
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

TEST_F(OutcomeTest, EachOutcomeHasItsEffectsInTheirOrder) {
  struct Case {  // NOLINT(clang-analyzer-optin.performance.Padding): a case reads best in this order.
    const char* name;
    HotkeyAction action;
    std::vector<std::string> recognized;  ///< Lines, or payloads.
    Effects effects;
    const char* record = nullptr;
    bool additive = false;
    bool keepLineBreaks = true;
  };
  using enum HotkeyAction;
  const Case cases[] = {
      {"text",
       captureText,
       {"one", " two"},
       {"pasteboard one\n two", storeHistory, "play Tink", "show checkmark.circle.fill Copied / one  two"},
       "text one\n two"},
      {"joined by the setting",
       captureText,
       {"one", " two"},
       {"pasteboard one two", storeHistory, "play Tink", "show checkmark.circle.fill Copied / one two"},
       "text one two",
       false,
       false},
      {"joined by the request",
       captureTextNoBreaks,
       {"one", " two"},
       {"pasteboard one two", storeHistory, "play Tink", "show checkmark.circle.fill Copied / one two"},
       "text one two"},
      {"blanks",
       captureText,
       {"  "},
       {"pasteboard   ", storeHistory, "play Tink", "show checkmark.circle.fill Copied /   "},
       "text   "},
      {"blanks, joined",
       captureTextNoBreaks,
       {"  "},
       {"pasteboard ", storeHistory, "play Tink", "show checkmark.circle.fill Copied"},
       "text "},
      {"invalid text",
       captureText,
       {"a\xFFz"},
       {"pasteboard a\uFFFDz", storeHistory, "play Tink", "show checkmark.circle.fill Copied / a\uFFFDz"},
       "text a\uFFFDz"},
      {"no text", captureText, {}, {"play Basso", "show exclamationmark.triangle.fill No text recognized"}},
      {"added to the buffer",
       captureText,
       {"one"},
       {storeBuffer, "pasteboard old\none", storeHistory, "play Tink",
        "show checkmark.circle.fill Added to additive clipboard / one"},
       "text one",
       true},
      {"speech",
       captureAndSpeak,
       {"one"},
       {"pasteboard one", storeHistory, "play Tink", "show checkmark.circle.fill Copied / one",
        "speak de-DE one"},
       "textToSpeech one"},
      {"speech, added to the buffer",
       captureAndSpeak,
       {"one"},
       {storeBuffer, "pasteboard old\none", storeHistory, "play Tink",
        "show checkmark.circle.fill Added to additive clipboard / one", "speak de-DE one"},
       "textToSpeech one",
       true},
      {"speech without text",
       captureAndSpeak,
       {},
       {"play Basso", "show exclamationmark.triangle.fill No text recognized"}},
      {"one code",
       captureBarcode,
       {"A"},
       {"pasteboard A", storeHistory, "play Tink", "show checkmark.circle.fill Code copied / A"},
       "barcode A"},
      {"three codes, not added to the buffer",
       captureBarcode,
       {"A", "", "C\r\n"},
       {"pasteboard A\n\nC\r\n", storeHistory, "play Tink", "show checkmark.circle.fill Copied 3 codes / A"},
       "barcode A\n\nC\r\n",
       true},
      {"no code",
       captureBarcode,
       {},
       {"play Basso", "show exclamationmark.triangle.fill No QR or barcode found"}},
  };
  desktop.userDefaults().setObject("recognitionLanguages", std::vector<std::string>{"de-DE", "en-US"});
  for (const Case& each : cases) {
    for (const bool sound : {true, false}) {
      SCOPED_TRACE(each.name);
      desktop.textRecognizer().recognizes(each.recognized);
      desktop.barcodeDetector().finds(each.recognized);
      Settings::setBool("additiveEnabled", each.additive);
      Settings::setBool("keepLineBreaksByDefault", each.keepLineBreaks);
      Settings::setBool("playSound", sound);
      desktop.userDefaults().setObject("additiveClipboardBuffer", std::string("old"));
      desktop.speechSynthesizer().utterances.clear();
      HistoryStore::shared().clear();
      desktop.effects().take();

      capture(each.action);
      Effects expected = each.effects;
      if (!sound) std::erase_if(expected, [](const auto& effect) { return effect.starts_with("play "); });
      EXPECT_EQ(results(), expected);
      EXPECT_THAT(history(),
                  each.record ? std::vector<std::string>{each.record} : std::vector<std::string>{});
    }
  }
}

TEST_F(OutcomeTest, FailuresAndMissingAccessEndInTheirMessages) {
  desktop.textRecognizer().result = platform::Error{"no engine"};
  desktop.barcodeDetector().result = platform::Error{"no detector"};
  capture(HotkeyAction::captureText);
  EXPECT_THAT(results(), ElementsAre("play Basso", "show exclamationmark.triangle.fill No text recognized"));
  capture(HotkeyAction::captureBarcode);
  EXPECT_THAT(results(),
              ElementsAre("play Basso", "show exclamationmark.triangle.fill No QR or barcode found"));
  press(HotkeyAction::captureText);
  desktop.windows().keyDown(platform::keyCodeEscape);
  desktop.settle();
  EXPECT_THAT(results(), IsEmpty()) << "cancelled";

  desktop.userDefaults().removeObject("lastSelection");
  press(HotkeyAction::captureLastSelection);
  EXPECT_THAT(results(), ElementsAre("show exclamationmark.triangle.fill No previous selection yet"));
  desktop.displays().accessGranted = false;
  desktop.textRecognizer().prepared.clear();
  press(HotkeyAction::captureText);
  EXPECT_THAT(desktop.textRecognizer().prepared, IsEmpty()) << "a refused request loads no recogniser";
  EXPECT_THAT(results(), ElementsAre("play Basso",
                                     "show exclamationmark.triangle.fill Screen Recording access required / "
                                     "Enable Lumiscan in System Settings › Privacy & Security"));
}

TEST_F(OutcomeTest, TheAdditiveClipboardIsSwitchedContinuedAndCleared) {
  int posts = 0;
  const auto observation =
      desktop.notificationCenter().addObserver(std::string(settingsChanged), [&] { ++posts; });
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

  // What isn't a string is no buffer, what is no Boolean or number doesn't switch anything on.
  desktop.userDefaults().setObject("additiveClipboardBuffer", platform::Data{"bytes"});
  EXPECT_EQ(ClipboardService::appendAdditive("x"), "x");
  desktop.userDefaults().setObject("additiveEnabled", std::string("true"));
  desktop.effects().take();
  delegate->toggleAdditive();
  EXPECT_EQ(results().back(), "show checkmark.circle.fill Additive clipboard on");
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
