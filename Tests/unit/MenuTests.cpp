// The status item and its menus, as a user reads and chooses them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "LaunchedProgram.h"
#include "app/HistoryTitle.h"
#include "output/HistoryStore.h"

namespace lumiscan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct MenuTest : LaunchedProgram {
  platform::Menu& statusMenu() { return *desktop.statusBar().shown->menu; }
  static std::shared_ptr<platform::MenuItem> item(const platform::Menu& menu, const std::string& title) {
    for (const auto& each : menu.items())
      if (each->title == title || each->title.starts_with(title + "\t")) return each;
    throw std::runtime_error("no item " + title);
  }
  void choose(const std::string& title) {
    const auto chosen = item(statusMenu(), title);
    chosen->action(*chosen);
    desktop.settle();
  }
  /// A line an item: what marks it, and its title.
  static std::vector<std::string> lines(const platform::Menu& menu) {
    std::vector<std::string> lines;
    for (const auto& each : menu.items()) {
      std::string line = each->isSeparator ? "---" : each->title;
      if (each->state == platform::ControlState::on) line.insert(0, "✓ ");
      if (!each->enabled) line.insert(0, "(").append(")");
      if (each->submenu) line += " ▸";
      lines.push_back(line);
    }
    return lines;
  }
  /// The history's menu as it opens.
  platform::Menu& openedHistory() {
    const auto menu = item(statusMenu(), "Recent Captures")->submenu;
    menu->update();
    return *menu;
  }
};

TEST_F(MenuTest, TheStatusItemShowsOurSymbolOrElseASign) {
  auto& bar = desktop.statusBar();
  const auto restart = [this] {
    delegate = nullptr;
    EXPECT_FALSE(desktop.statusBar().shown);
    delegate = std::make_shared<AppDelegate>();
    delegate->applicationDidFinishLaunching();
  };
  EXPECT_EQ(bar.shown->length, platform::squareStatusItemLength);
  EXPECT_EQ(bar.shown->button.image.value().name, "text.viewfinder");
  EXPECT_EQ(bar.shown->button.image->accessibilityDescription, "Lumiscan");
  EXPECT_TRUE(bar.shown->button.image->isTemplate);
  EXPECT_EQ(bar.shown->button.title, "");
  EXPECT_EQ(bar.shown->button.toolTip, "Lumiscan — instant text capture by Varnholt");
  bar.knownSymbol = "";
  restart();
  EXPECT_FALSE(bar.shown->button.image);
  EXPECT_EQ(bar.shown->button.title, "◉");
  EXPECT_EQ(bar.shown->button.toolTip, "Lumiscan — instant text capture by Varnholt");
  bar.hasButtons = false;
  restart();
  EXPECT_EQ(statusMenu().items().size(), 17U);
}

TEST_F(MenuTest, TheStatusMenuFollowsBindingsAndSettingsOnceTheEventIsOver) {
  desktop.userDefaults().removeObject("hotkey.captureTextNoBreaks");
  HotkeyManager::shared().setHotkey(HotkeyBinding{49, 4352}, HotkeyAction::toggleAdditiveClipboard);
  EXPECT_EQ(statusMenu().items()[1]->title, "Capture Text (join lines)\t⌘D") << "not rebuilt yet";
  desktop.settle();
  const auto expected = [](const char* stop, const char* additive) {
    return ElementsAre("Capture Text\t⇧⌘2", "Capture Text (join lines)", "Capture & Speak\t⌃⌥⌘S",
                       "Capture QR / Barcode\t⌃⌥⌘B", "Capture Last Selection\t⌃⌥⌘R", stop, "---", additive,
                       "Clear Additive Clipboard", "---", "Recent Captures ▸", "Clear History", "---",
                       "Settings…", "About Lumiscan", "---", "Quit Lumiscan");
  };
  EXPECT_THAT(lines(statusMenu()), expected("Stop Speaking", "Additive Clipboard"));
  const auto before = desktop.statusBar().shown->menu;
  HotkeyManager::shared().setHotkey(HotkeyBinding{49, 4352}, HotkeyAction::stopSpeaking);
  choose("Additive Clipboard");
  EXPECT_THAT(lines(statusMenu()), expected("Stop Speaking\t⌃⌘Space", "✓ Additive Clipboard"));
  EXPECT_NE(desktop.statusBar().shown->menu, before);
  EXPECT_EQ(item(*before, "Recent Captures")->submenu, item(statusMenu(), "Recent Captures")->submenu)
      << "one menu object for good";
  desktop.hotKeys().press(49, 4352);
  choose("Additive Clipboard");
  EXPECT_THAT(lines(statusMenu()), expected("Stop Speaking\t⌃⌘Space", "Additive Clipboard"));
}

TEST_F(MenuTest, EachItemDoesWhatItSays) {
  desktop.textRecognizer().recognizes({"a", "b"});
  desktop.barcodeDetector().finds({"code"});
  for (const auto& [title, text] : {std::pair{"Capture Text", "a\nb"},
                                    {"Capture Text (join lines)", "a b"},
                                    {"Capture & Speak", "a\nb"},
                                    {"Capture QR / Barcode", "code"}}) {
    SCOPED_TRACE(title);
    EXPECT_TRUE(item(statusMenu(), title)->capturesScreen);
    choose(title);
    ASSERT_EQ(overlays().size(), 1U);
    desktop.windows().dragMouse({100, 200}, {400, 350});
    desktop.settle();
    EXPECT_EQ(desktop.pasteboard().text, text);
  }
  EXPECT_TRUE(desktop.speechSynthesizer().isSpeaking());
  EXPECT_FALSE(item(statusMenu(), "Stop Speaking")->capturesScreen) << "it would come late";
  choose("Stop Speaking");
  EXPECT_FALSE(desktop.speechSynthesizer().isSpeaking());
  EXPECT_TRUE(item(statusMenu(), "Capture Last Selection")->capturesScreen);
  choose("Capture Last Selection");
  EXPECT_EQ(desktop.pasteboard().text, "a\nb");
  results();
  choose("Clear Additive Clipboard");
  EXPECT_THAT(results(), ElementsAre("store additiveClipboardBuffer",
                                     "show checkmark.circle.fill Additive clipboard cleared"));
  choose("Clear History");
  EXPECT_THAT(results(), ElementsAre("store captureHistory"));
  EXPECT_THAT(HistoryStore::shared().items(), IsEmpty());

  choose("Settings…");
  platform::Window* const settings = desktop.windows().keyWindow();
  ASSERT_TRUE(settings);
  settings->orderOut();
  choose("Settings…");
  EXPECT_EQ(desktop.windows().keyWindow(), settings) << "one window for good";

  const int activations = desktop.application().activations;
  choose("About Lumiscan");
  ASSERT_EQ(desktop.alerts().shown.size(), 1U);
  EXPECT_EQ(desktop.alerts().shown[0].messageText, "Lumiscan 1.0");
  EXPECT_EQ(desktop.alerts().shown[0].informativeText,
            "Instant text capture for macOS, by Varnholt.\n\n"
            "Select any area of your screen — Lumiscan recognizes the text and copies it to your clipboard. "
            "It can also read QR and barcode content and speak captured text aloud.\n\n"
            "All recognition happens on-device with Apple's Vision framework.");
  EXPECT_EQ(desktop.application().activations, activations);
  EXPECT_FALSE(desktop.application().terminated);
  choose("Quit Lumiscan");
  EXPECT_TRUE(desktop.application().terminated);
}

TEST_F(MenuTest, TheHistoryIsFreshAtEveryOpening) {
  EXPECT_THAT(lines(openedHistory()), ElementsAre("(No captures yet)"));
  EXPECT_FALSE(openedHistory().items()[0]->action);
  for (int i = 1; i <= 15; ++i)
    HistoryStore::shared().add(
        {platform::UUID::random(), {0}, CaptureMode::text, "text " + std::to_string(i) + "\nmore"});
  const auto& items = openedHistory().items();
  ASSERT_EQ(items.size(), 10U);
  EXPECT_TRUE(items.front()->title.ends_with("  text 15"));
  EXPECT_TRUE(items.back()->title.ends_with("  text 6"));
  EXPECT_EQ(items.back()->toolTip, "text 6\nmore");
  EXPECT_EQ(items.back()->representedObject, HistoryStore::shared().items()[9].id.uuidString());
  const auto chosen = items.back();
  choose("Clear History");
  EXPECT_THAT(lines(openedHistory()), ElementsAre("(No captures yet)"));
  chosen->action(*chosen);
  EXPECT_EQ(desktop.pasteboard().text, "before") << "an entry that was cleared meanwhile";
}

TEST_F(MenuTest, OpeningTheStatusMenuRegistersTheHotkeysAgain) {
  HotkeyManager::shared().unregisterAll();
  openedHistory();
  EXPECT_EQ(registered(), 0U);
  const auto menu = desktop.statusBar().shown->menu;
  menu->update();
  EXPECT_EQ(registered(), 5U);
  EXPECT_EQ(desktop.statusBar().shown->menu, menu) << "not rebuilt";

  HotkeyManager::shared().unregisterAll();
  desktop.notificationCenter().post(settingsChanged);
  desktop.settle();
  menu->update();
  EXPECT_EQ(registered(), 0U) << "a menu that has been replaced";
}

std::string repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(HistoryTitle, IsTheTimeAndTheStartOfTheFirstLine) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466";
  const std::string flag = "\U0001F1E9\U0001F1EA";
  for (const auto& [text, start] : {std::pair<std::string, std::string>{"one\ntwo", "one"},
                                    {"\n\nfirst\nsecond", "first"},
                                    {"", ""},
                                    {"\n\n", "\n\n"},
                                    {"a\r\nb\nc", "a\r\nb"},
                                    {"\r\n\nx", "\r\n"},
                                    {" \tx", " \tx"},
                                    {repeated("x", 48), repeated("x", 48)},
                                    {repeated("y", 60), repeated("y", 48)},
                                    {repeated("é", 60), repeated("é", 48)},
                                    {repeated("e\u0301", 60), repeated("e\u0301", 48)},
                                    {repeated(family, 60), repeated(family, 48)},
                                    {repeated(flag, 60), repeated(flag, 48)},
                                    {repeated("\r\n", 60), repeated("\r\n", 48)}})
    EXPECT_EQ(historyTitle({{}, {0}, CaptureMode::textToSpeech, text}).substr(5), "  " + start);

  setenv("TZ", "Asia/Kolkata", 1);
  EXPECT_EQ(historyTitle({{}, {86400 * 200 - 1.5}, CaptureMode::barcode, "x"}), "05:29  [code] x");
  setenv("TZ", "EST5", 1);
  EXPECT_EQ(historyTitle({{}, {-0.5}, CaptureMode::text, "x"}), "18:59  x") << "the zone of now";
  for (const double far : {-1e300, 1e300})
    EXPECT_EQ(historyTitle({{}, {far}, CaptureMode::text, "x"}).size(), 8U);
  unsetenv("TZ");
}

}  // namespace
}  // namespace lumiscan
