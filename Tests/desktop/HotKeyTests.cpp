// Every hotkey on a real X server, whatever the keyboard's layout, locks and modifiers; and keys that are
// held.

#include <algorithm>

#include "desktop/LinuxFixture.h"
#include "hotkeys/HotkeyManager.h"
#include "platform/HotKeys.h"

namespace lumiscan::testing {
namespace {

class HotKeyTest : public ::testing::Test {
 protected:
  HotKeyTest() {
    auto& manager = HotkeyManager::shared();
    manager.onAction = [this](HotkeyAction action) { fired_.push_back(action); };
    manager.setHotkey(HotkeyBinding{101, 0}, HotkeyAction::captureTextNoBreaks);  // F9.
    manager.setHotkey(HotkeyBinding{12, cmdKey | optionKey}, HotkeyAction::stopSpeaking);
    manager.setHotkey(HotkeyBinding{6, controlKey | shiftKey}, HotkeyAction::toggleAdditiveClipboard);
    manager.setHotkey(HotkeyBinding{44, controlKey | optionKey}, HotkeyAction::clearAdditiveClipboard);
  }

  /// What fires when the user presses the hotkeys one after the other.
  std::vector<HotkeyAction> pressAll() {
    fired_.clear();
    for (const HotkeyAction action : allHotkeyActions) {
      const auto binding = HotkeyManager::shared().hotkey(action);
      desktop_.pressKey(binding->keyCode, binding->modifiers);
    }
    return fired_;
  }
  void run(const std::vector<std::string>& command) {
    ASSERT_EQ(Process(command).waitForEnd(), 0) << command[0];
    desktop_.handleWhatTheServerSent();
  }

  LinuxFixture desktop_;
  std::vector<HotkeyAction> fired_;
};

TEST_F(HotKeyTest, EveryHotkeyIsItsPhysicalKeyWhateverTheKeyboardSays) {
  const std::vector<HotkeyAction> all(allHotkeyActions.begin(), allHotkeyActions.end());
  // A key, after what is done at a shell.
  const std::tuple<const char*, std::uint8_t, const char*> steps[] = {
      {"as the server starts", 0, ""},
      {"Caps Lock on", KEY_CAPSLOCK, ""},
      {"Num Lock on as well", KEY_NUMLOCK, ""},
      {"German", 0, "setxkbmap de"},
      {"Dvorak, with Caps Lock off", 0, "setxkbmap dvorak"},
      {"two layouts", 0, "setxkbmap -layout us,de -option grp:menu_toggle"},
      {"the second of them", KEY_COMPOSE, ""},
      {"Num Lock is another modifier", 0, "xmodmap -e 'clear mod2' -e 'clear mod3' -e 'add mod3 = Num_Lock'"},
      {"and switched", KEY_NUMLOCK, ""},
      {"Super and Alt are others", 0,
       "xmodmap -e 'clear mod1' -e 'clear mod4' -e 'clear mod5' -e 'add mod5 = Super_L' -e 'add mod4 = "
       "Alt_L'"},
      {"and Num Lock switched", KEY_NUMLOCK, ""},
      {"Meta for Alt", 0, "xmodmap -e 'clear mod4' -e 'keycode 64 = Meta_L' -e 'add mod4 = Meta_L'"},
  };
  for (const auto& [name, key, command] : steps) {
    SCOPED_TRACE(name);
    run({"sh", "-c", command});
    if (key != 0) desktop_.screen().pressKeys({key});
    desktop_.handleWhatTheServerSent();
    EXPECT_EQ(pressAll(), all);
    HotkeyManager::shared().reregisterAll();
    desktop_.handleWhatTheServerSent();
    EXPECT_EQ(pressAll(), all) << "registered again";
  }

  // A keyboard without Super has no such combination, and one that gets it back has it again.
  run({"xmodmap", "-e", "clear mod5"});
  EXPECT_EQ(pressAll(), (std::vector{HotkeyAction::captureTextNoBreaks, HotkeyAction::toggleAdditiveClipboard,
                                     HotkeyAction::clearAdditiveClipboard}));
  EXPECT_EQ(platform::HotKeys::shared().registerEventHotKey(1, cmdKey, {1, 1}).status,
            platform::hotKeyInvalidErr);
  run({"xmodmap", "-e", "add mod5 = Super_L"});
  EXPECT_EQ(pressAll(), all);
}

TEST_F(HotKeyTest, AHeldKeyFiresOnceAndItsNextPressAgain) {
  PrivateDesktop& screen = desktop_.screen();
  const auto firings = [this] { return std::ranges::count(fired_, HotkeyAction::captureTextNoBreaks); };
  run({"xset", "r", "rate", "30", "100"});
  const KeyCounter presses(XCB_KEY_PRESS, KEY_F9);
  screen.keyDown(KEY_F9);
  ASSERT_TRUE(desktop_.waitFor([&] { return presses.count > 3; }));
  EXPECT_EQ(firings(), 1);

  // Our own grab ends while the key is held: its release is nobody's. No other key is pressed meanwhile.
  ASSERT_EQ(Process({"xset", "r", "off"}).waitForEnd(), 0);
  auto* const own = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  xcb_ungrab_keyboard(own, XCB_TIME_CURRENT_TIME);
  std::free(xcb_get_input_focus_reply(own, xcb_get_input_focus(own), nullptr));
  screen.keyUp(KEY_F9);
  // The next press comes while another program has the keyboard, and stays that program's.
  ASSERT_TRUE(screen.grabKeyboard());
  screen.pressKeys({KEY_F9});
  screen.ungrab();
  desktop_.pressKey(101, 0);
  EXPECT_EQ(firings(), 2);
}

}  // namespace
}  // namespace lumiscan::testing
