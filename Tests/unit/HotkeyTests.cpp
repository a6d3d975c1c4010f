#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "hotkeys/HotkeyManager.h"
#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {

void PrintTo(const HotkeyBinding& binding, std::ostream* stream) {
  *stream << binding.keyCode << ',' << binding.modifiers;
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t signature = 0x4C4D5343;

struct HotkeyTest : ::testing::Test {
  std::vector<std::uint32_t> registeredIDs() {
    std::vector<std::uint32_t> ids;
    for (const auto& registration : desktop.hotKeys().registrations()) {
      EXPECT_EQ(registration.id.signature, signature);
      ids.push_back(registration.id.id);
    }
    return ids;
  }
  /// Has the manager note in `actions` what it calls back with.
  void recordActions() {
    manager.onAction = [this](HotkeyAction action) { actions.push_back(rawValue(action)); };
  }

  testing::SimulatedDesktop desktop;
  HotkeyManager& manager = HotkeyManager::shared();
  std::vector<std::string_view> actions;
};

TEST_F(HotkeyTest, StoredTextIsReadAsTwoNumbersOrNone) {
  using Binding = std::optional<HotkeyBinding>;
  const auto expectRead = [this](const platform::DefaultsValue& stored, const Binding& binding) {
    desktop.userDefaults().setObject("hotkey.captureBarcode", stored);
    EXPECT_EQ(manager.hotkey(HotkeyAction::captureBarcode), binding) << ::testing::PrintToString(stored);
  };
  for (const std::string text : {"19,768", "19,,768", ",19,768,", "19,x,768"})
    expectRead(text, Binding({19, 768}));
  expectRead(std::string("19,4294967295"), Binding({19, 4294967295}));
  expectRead(std::string("19,0"), Binding({19, 0}));
  for (const std::string text :
       {"19,4294967296", " 19,768", "-19,768", "0x13,768", "19x,768", "0,256", "19", "19,768,1", ",", ""})
    expectRead(text, std::nullopt);
  const Binding byDefault({11, 6400});
  expectRead(19.0, byDefault);
  expectRead(std::vector<std::string>{"19", "768"}, byDefault);
}

TEST_F(HotkeyTest, SettingABindingStoresRegistersAndAnnouncesItAndRemovingItBringsTheDefaultBack) {
  std::vector<std::vector<std::uint32_t>> announced;
  const auto observation = desktop.notificationCenter().addObserver(
      settingsChanged, [&] { announced.push_back(registeredIDs()); });
  manager.setHotkey(HotkeyBinding{1, 256}, HotkeyAction::stopSpeaking);
  EXPECT_EQ(desktop.userDefaults().stringForKey("hotkey.stopSpeaking"), "1,256");
  manager.setHotkey(HotkeyBinding{0, 6400}, HotkeyAction::captureText);
  EXPECT_EQ(desktop.userDefaults().stringForKey("hotkey.captureText"), "0,6400");
  manager.setHotkey(std::nullopt, HotkeyAction::captureText);
  EXPECT_EQ(desktop.userDefaults().object("hotkey.captureText"), std::nullopt);
  EXPECT_THAT(announced,
              ElementsAre(ElementsAre(1, 3, 4, 5, 6), ElementsAre(3, 4, 5, 6), ElementsAre(1, 3, 4, 5, 6)))
      << "registered before it is announced; the A key can't carry a shortcut";
}

TEST_F(HotkeyTest, RefusedCombinationsAreLoggedAndTriedAgain) {
  desktop.hotKeys().takenByOthers = {{19, 768}};
  desktop.userDefaults().setObject("hotkey.stopSpeaking", std::string("1,6400"));
  desktop.userDefaults().setObject("hotkey.clearAdditiveClipboard", std::string("4000,256"));
  manager.reregisterAll();
  EXPECT_THAT(registeredIDs(), ElementsAre(3, 4, 5)) << "of two equal bindings the earlier action keeps it";
  EXPECT_THAT(desktop.logSink().take(),
              ElementsAre("hotkeys error: register failed: captureText status=-9878",
                          "hotkeys error: register failed: stopSpeaking status=-9878",
                          "hotkeys error: register failed: clearAdditiveClipboard status=-9879",
                          "hotkeys: hotkeys registered: 3"));
  desktop.hotKeys().takenByOthers.clear();
  manager.reregisterAll();
  EXPECT_THAT(registeredIDs(), ElementsAre(1, 3, 4, 5)) << "at once: no other program may slip in";
  EXPECT_EQ(desktop.hotKeys().handlersInstalled, 1);
}

TEST_F(HotkeyTest, PressesReachTheCallbackFromTheMainQueueInOrder) {
  manager.reregisterAll();
  desktop.logSink().take();
  EXPECT_TRUE(desktop.hotKeys().press(11, 6400)) << "with no callback a press is only logged";
  desktop.settle();

  manager.onAction = [](HotkeyAction) { ADD_FAILURE() << "the callback at the time of the run counts"; };
  desktop.hotKeys().press(15, 6400);
  desktop.hotKeys().press(19, 768);
  EXPECT_THAT(actions, IsEmpty());
  recordActions();
  desktop.settle();
  EXPECT_THAT(actions, ElementsAre("captureLastSelection", "captureText"));
  EXPECT_THAT(desktop.logSink().take(),
              ElementsAre("hotkeys: fired: captureBarcode", "hotkeys: fired: captureLastSelection",
                          "hotkeys: fired: captureText"));
}

TEST_F(HotkeyTest, ForeignEventsAreIgnoredSilentlyAndOursAreInAFixedOrder) {
  manager.reregisterAll();
  desktop.logSink().take();
  recordActions();
  const std::vector<platform::HotKeyEvent> foreign = {
      {std::nullopt}, {{{signature, 0}}}, {{{signature, 9}}}, {{{signature + 1, 1}}}};
  EXPECT_EQ(desktop.hotKeys().deliver(nullptr), platform::noErr);
  for (const auto& event : foreign) EXPECT_EQ(desktop.hotKeys().deliver(&event), platform::noErr);
  desktop.settle();
  EXPECT_THAT(actions, IsEmpty());
  EXPECT_THAT(desktop.logSink().take(), IsEmpty());

  for (std::uint32_t id = 1; id <= 8; ++id) {
    const platform::HotKeyEvent ours{{{signature, id}}};
    EXPECT_EQ(desktop.hotKeys().deliver(&ours), platform::noErr);
  }
  desktop.settle();
  EXPECT_THAT(actions, ElementsAre("captureText", "captureTextNoBreaks", "captureAndSpeak", "captureBarcode",
                                   "captureLastSelection", "stopSpeaking", "toggleAdditiveClipboard",
                                   "clearAdditiveClipboard"));
  for (const HotkeyAction action : allHotkeyActions) EXPECT_EQ(hotkeyAction(rawValue(action)), action);
  EXPECT_EQ(hotkeyAction("CaptureText"), std::nullopt);
}

TEST(HotkeyText, ShowsModifiersInAFixedOrderBeforeTheKey) {
  const std::vector<std::pair<HotkeyBinding, std::string>> cases = {
      {{19, 768}, "⇧⌘2"},       {{1, 6400}, "⌃⌥⌘S"},   {{49, 4352}, "⌃⌘Space"},
      {{53, 256}, "⌘Key 53"},   {{0, 6400}, "⌃⌥⌘A"},   {{36, 0x1B00}, "⌃⌥⇧⌘↩"},
      {{122, 0}, "F1"},         {{120, 0}, "Key 120"}, {{123, 0}, "Key 123"},
      {{10, 0}, "Key 10"},      {{22, 0}, "6"},        {{23, 0}, "5"},
      {{42, 0xFFFF}, "⌃⌥⇧⌘\\"}, {{48, 0x0400}, "⇥"},   {{4294967295, 0}, "Key 4294967295"},
  };
  for (const auto& [binding, text] : cases)
    EXPECT_EQ(HotkeyManager::displayString(binding.keyCode, binding.modifiers), text);
}

TEST(HotkeyText, FiftyKeysHaveNamesThatNoOtherHas) {
  std::set<std::string> names;
  for (std::uint32_t keyCode = 0; keyCode < 256; ++keyCode) {
    const std::string name = HotkeyManager::keyCodeToString(keyCode);
    if (name.starts_with("Key ")) continue;
    EXPECT_TRUE(names.insert(name).second) << name;
  }
  EXPECT_EQ(names.size(), 50U);
}

}  // namespace
}  // namespace lumiscan
