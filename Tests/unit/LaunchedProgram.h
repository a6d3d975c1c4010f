#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "app/AppDelegate.h"
#include "hotkeys/HotkeyManager.h"
#include "settings/Settings.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan {

/// The launched program, used by its hotkeys and the mouse.
struct LaunchedProgram : ::testing::Test {
  void SetUp() override {
    desktop.userDefaults().setObject("hotkey.captureTextNoBreaks", std::string("2,256"));
    desktop.application().setDelegate(delegate.get());
    desktop.application().run();
    desktop.pasteboard().takeOver("before");
    desktop.effects().take();
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
  /// The effects so far but for those of every session: its hint and what a repeat needs.
  std::vector<std::string> results() {
    std::vector<std::string> effects = desktop.effects().take();
    std::erase_if(effects, [](const std::string& effect) {
      return effect == "store lastSelection" || effect.starts_with("show text.magnifyingglass ");
    });
    return effects;
  }
  std::vector<platform::Window*> overlays() {
    std::vector<platform::Window*> overlays;
    for (platform::Window* window : desktop.windows().visible())
      if (window->attributes().level > platform::windowLevelFloating) overlays.push_back(window);
    return overlays;
  }

  /// How many hotkeys are.
  std::size_t registered() { return desktop.hotKeys().registrations().size(); }

  testing::SimulatedDesktop desktop;
  std::shared_ptr<AppDelegate> delegate = std::make_shared<AppDelegate>();
};

}  // namespace lumiscan
