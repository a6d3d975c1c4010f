// The settings, in the store and in their window.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hotkeys/HotkeyManager.h"
#include "output/HistoryStore.h"
#include "settings/Settings.h"
#include "settings/SettingsWindowController.h"
#include "support/SimulatedForm.h"

namespace lumiscan {
namespace {

using namespace platform;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Settings, BooleansHaveTheirDefaultsUnlessABooleanOrANumberIsStored) {
  testing::SimulatedDesktop desktop;
  for (const auto& [key, get, byDefault] :
       {std::tuple("playSound", &Settings::playSound, true),
        {"showHUD", &Settings::showHUD, true},
        {"keepLineBreaksByDefault", &Settings::keepLineBreaksByDefault, true},
        {"additiveEnabled", &Settings::additiveEnabled, false}}) {
    EXPECT_EQ(get(), byDefault) << key;
    const std::pair<DefaultsValue, bool> cases[] = {{false, false},
                                                    {true, true},
                                                    {0.0, false},
                                                    {2.0, true},
                                                    {std::string("false"), byDefault},
                                                    {std::string("true"), byDefault},
                                                    {std::vector<std::string>{}, byDefault},
                                                    {Data{}, byDefault}};
    for (const auto& [stored, value] : cases) {
      desktop.userDefaults().setObject(key, stored);
      EXPECT_EQ(get(), value) << key << " holding type " << stored.index();
    }
  }
}

struct SettingsWindowTest : ::testing::Test {
  /// Opens the window; what is to be in force when the form is made comes before.
  testing::SimulatedForm& open() {
    controller.show();
    if (!form)
      form = std::make_unique<testing::SimulatedForm>(
          desktop, dynamic_cast<HostingView&>(*controller.window()->contentView()));
    desktop.effects().take();
    posts = 0;
    return *form;
  }
  std::vector<std::string> languages() {
    return desktop.userDefaults().stringArrayForKey("recognitionLanguages").value();
  }
  std::optional<std::string> storedShortcut(const std::string& action) {
    return desktop.userDefaults().stringForKey("hotkey." + action);
  }

  testing::SimulatedDesktop desktop;
  int posts = 0;
  bool linesWereKept = true;
  const std::shared_ptr<void> observation =
      desktop.notificationCenter().addObserver("varnholt.lumiscan.settingsChanged", [this] {
        ++posts;
        linesWereKept = Settings::keepLineBreaksByDefault();
      });
  SettingsWindowController controller;
  std::unique_ptr<testing::SimulatedForm> form;
};

TEST_F(SettingsWindowTest, IsOneWindowThatComesBackAsItWas) {
  EXPECT_EQ(controller.window(), nullptr);
  open();
  Window* const window = controller.window();
  EXPECT_EQ(desktop.windows().keyWindow(), window);
  EXPECT_EQ(desktop.application().activations, 1);
  EXPECT_EQ(window->attributes().title, "Lumiscan Settings");
  EXPECT_EQ(window->frame(), (Rect{{460, 170}, {520, 560}})) << "the middle of the screen";
  form->flip("Play sound after capture");
  window->orderOut();
  desktop.displays().attach(2, {{1440, 100}, {800, 400}});
  desktop.windows().mouseMove({1500, 200});
  open();
  EXPECT_EQ(controller.window(), window);
  EXPECT_EQ(desktop.windows().visible(), std::vector{window});
  EXPECT_EQ(window->frame().origin, (Point{460, 170}));
  EXPECT_FALSE(form->toggle("Play sound after capture").isOn);
  SettingsWindowController onASmallScreen;
  onASmallScreen.show();
  EXPECT_EQ(onASmallScreen.window()->frame(), (Rect{{1580, -60}, {520, 560}})) << "shows its title";
}

TEST_F(SettingsWindowTest, ShowsTheSettingsInFourSections) {
  desktop.textRecognizer().missingPackages = {{"ja-JP", "tesseract-ocr-jpn"}};
  open();
  EXPECT_THAT(form->section("General"),
              ElementsAre("[ ] Launch at login", "[x] Play sound after capture",
                          "[x] Show capture confirmation", "[ ] Additive clipboard (append captures)",
                          "Line breaks: Keep line breaks | Join lines into a paragraph"));
  EXPECT_THAT(
      form->section("Recognition languages"),
      ElementsAre("[x] English (US)", "[ ] English (UK)", "[ ] French", "[ ] Italian", "[ ] German",
                  "[ ] Spanish", "[ ] Portuguese (Brazil)", "[ ] Chinese (Simplified)",
                  "[ ] Chinese (Traditional)", "[ ] Japanese", "[ ] Korean", "[ ] Russian", "[ ] Ukrainian",
                  "Recognition support depends on the macOS version. Selecting more than three "
                  "languages slows recognition down."));
  EXPECT_THAT(
      form->section("Global shortcuts"),
      ElementsAre("Click a field, then press the combination you want. Press Esc to clear.",
                  "Capture Text / [⇧⌘2]", "Capture Text (join lines) / [—]", "Capture & Speak / [⌃⌥⌘S]",
                  "Capture QR / Barcode / [⌃⌥⌘B]", "Capture Last Selection / [⌃⌥⌘R]", "Stop Speaking / [—]",
                  "Toggle Additive Clipboard / [—]", "Clear Additive Clipboard / [—]"));
  EXPECT_THAT(form->section("History"), ElementsAre("0 recent captures kept / [Clear History]"));
  EXPECT_EQ(form->field("Capture Text").attributes().placeholderString, "Record shortcut…");
  EXPECT_THAT(form->toggle("Japanese").help, HasSubstr("tesseract-ocr-jpn"));
  EXPECT_EQ(form->toggle("Korean").help, "");
  EXPECT_EQ(posts, 0) << "showing is no change";
}

TEST_F(SettingsWindowTest, SwitchesWriteAndAnnounceEachChangeOnce) {
  open();
  for (const auto& [label, key] : {std::pair("Play sound after capture", "playSound"),
                                   {"Show capture confirmation", "showHUD"},
                                   {"Additive clipboard (append captures)", "additiveEnabled"}}) {
    SCOPED_TRACE(label);
    const bool before = form->toggle(label).isOn;
    for (const bool value : {!before, before}) {
      posts = 0;
      const int fields = form->fieldsMade();
      form->flip(label);
      EXPECT_EQ(desktop.userDefaults().object(key), DefaultsValue(value));
      EXPECT_EQ(form->toggle(label).isOn, value);
      EXPECT_EQ(posts, 1);
      EXPECT_EQ(form->fieldsMade() - fields, 8) << "every shortcut's field is made anew";
    }
  }
  posts = 0;
  form->choose("Line breaks", 1);
  EXPECT_FALSE(linesWereKept) << "stored before it is announced";
  form->choose("Line breaks", 1);
  EXPECT_EQ(posts, 1) << "choosing what is chosen is no change";
  EXPECT_EQ(form->section("General").back(), "Line breaks: Join lines into a paragraph | Keep line breaks");
}

TEST_F(SettingsWindowTest, LanguagesKeepTheirOrder) {
  Settings::setRecognitionLanguages({"de-DE", "xx", "en-US", "de-DE"});
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("de-DE", "xx", "en-US", "de-DE"));
  open();
  form->flip("Ukrainian");
  form->flip("French");
  EXPECT_THAT(languages(), ElementsAre("de-DE", "xx", "en-US", "uk-UA", "fr-FR"));
  EXPECT_EQ(posts, 2);
  form->flip("German");
  form->flip("German");
  EXPECT_THAT(languages(), ElementsAre("xx", "en-US", "uk-UA", "fr-FR", "de-DE"));
  for (const char* label : {"English (US)", "Ukrainian", "French", "German"}) form->flip(label);
  EXPECT_THAT(languages(), ElementsAre("xx"));
}

TEST_F(SettingsWindowTest, NoLanguageAtAllIsStoredAsSuch) {
  desktop.userDefaults().setObject("recognitionLanguages", std::string("de-DE"));
  open().flip("English (US)");
  EXPECT_THAT(languages(), IsEmpty());
  EXPECT_FALSE(form->toggle("English (US)").isOn);
  EXPECT_THAT(Settings::recognitionLanguages(), ElementsAre("en-US"));
}

TEST_F(SettingsWindowTest, LaunchAtLoginIsTheDesktopsAffair) {
  desktop.loginItem().current = LoginItemStatus::requiresApproval;
  open();
  EXPECT_FALSE(form->toggle("Launch at login").isOn);
  form->flip("Launch at login");
  EXPECT_TRUE(form->toggle("Launch at login").isOn);
  EXPECT_EQ(desktop.loginItem().current, LoginItemStatus::enabled);
  EXPECT_EQ(posts, 0);
  EXPECT_THAT(desktop.effects().take(), IsEmpty()) << "nothing is stored";

  // What can't be done turns the switch back, and the opposite is asked for.
  desktop.loginItem().refuses = true;
  desktop.loginItem().asked.clear();
  form->flip("Launch at login");
  EXPECT_TRUE(form->toggle("Launch at login").isOn);
  EXPECT_THAT(desktop.loginItem().asked, ElementsAre("unregister", "register"));
}

TEST_F(SettingsWindowTest, TheHistoryIsCountedAndCleared) {
  for (int i = 0; i < 3; ++i)
    HistoryStore::shared().add({UUID::random(), Date::now(), CaptureMode::text, "text"});
  open();
  EXPECT_THAT(form->section("History"), ElementsAre("3 recent captures kept / [Clear History]"));
  HistoryStore::shared().add({UUID::random(), Date::now(), CaptureMode::text, "more"});
  desktop.settle();
  EXPECT_THAT(form->section("History"), ElementsAre("4 recent captures kept / [Clear History]"));
  const int fields = form->fieldsMade();
  form->press("Clear History");
  EXPECT_THAT(form->section("History"), ElementsAre("0 recent captures kept / [Clear History]"));
  EXPECT_THAT(HistoryStore().items(), IsEmpty()) << "as stored";
  EXPECT_EQ(form->fieldsMade() - fields, 8);
  EXPECT_EQ(posts, 0);
}

TEST_F(SettingsWindowTest, FieldsRecordAcceptableCombinationsRefuseOthersWithABeepAndClearByEscape) {
  using Key = KeyEvent;
  open();
  HotkeyManager::shared().reregisterAll();
  for (const auto& [key, stored, shown] :
       {std::tuple(Key{23, modifierCommand | modifierShift | modifierCapsLock}, "23,768", "⇧⌘5"),
        {Key{122, modifierOption | modifierCapsLock}, "122,2048", "⌥F1"},
        {Key{96, modifierOption}, "96,2048", "⌥Key 96"},
        {Key{1, modifierControl | 0x104}, "1,4096", "⌃S"},
        {Key{0, modifierControl | modifierOption | modifierCommand}, "0,6400", "—"}}) {
    posts = 0;
    form->pressKey("Stop Speaking", key);
    EXPECT_EQ(storedShortcut("stopSpeaking"), stored);
    EXPECT_EQ(form->field("Stop Speaking").stringValue(), shown);
    EXPECT_EQ(desktop.hotKeys().press(key.keyCode, HotkeyManager::carbonModifiers(key.modifierFlags)),
              key.keyCode != 0)
        << "registered at once";
    EXPECT_EQ(posts, 1);
  }
  desktop.effects().take();
  for (const Key& key : {Key{0, 0}, {0, modifierShift | modifierCapsLock}, {keyCodeNone, modifierCommand}}) {
    form->pressKey("Capture QR / Barcode", key);
    EXPECT_THAT(desktop.effects().take(), ElementsAre("beep"));
  }
  EXPECT_EQ(posts, 1);
  EXPECT_EQ(form->field("Capture QR / Barcode").stringValue(), "⌃⌥⌘B");

  form->pressKey("Capture QR / Barcode", {20, modifierCommand});
  EXPECT_EQ(form->field("Capture QR / Barcode").stringValue(), "⌘3");
  form->pressKey("Capture QR / Barcode", {keyCodeEscape, modifierCommand});
  EXPECT_EQ(storedShortcut("captureBarcode"), std::nullopt);
  EXPECT_EQ(form->field("Capture QR / Barcode").stringValue(), "⌃⌥⌘B") << "the default is back";
  EXPECT_EQ(posts, 3);
}

}  // namespace
}  // namespace lumiscan
