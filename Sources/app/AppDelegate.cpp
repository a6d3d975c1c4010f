#include "app/AppDelegate.h"

#include "hotkeys/HotkeyManager.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

constexpr double reregisterInterval = 30;  // Seconds.

void reregisterHotkeys() { HotkeyManager::shared().reregisterAll(); }

}  // namespace

void AppDelegate::applicationDidFinishLaunching() {
  platform::Application::shared().disableSuddenTermination();
  historyMenu_->setDelegate(weak_from_this());
  buildStatusItem();
  HotkeyManager::shared().onAction = [weakSelf = weak_from_this()](HotkeyAction action) {
    if (const auto self = weakSelf.lock()) self->perform(action);
  };
  reregisterHotkeys();
  observations_.push_back(platform::NotificationCenter::defaultCenter().addObserver(
      settingsChanged, [weakSelf = weak_from_this()] {
        if (const auto self = weakSelf.lock()) self->settingsDidChange();
      }));
  // A registration can get lost while the machine sleeps or another user is at it, and a refused one may be
  // free by now.
  reregisterTimer_ = platform::Timer::scheduledRepeating(reregisterInterval, reregisterHotkeys);
  auto& workspace = platform::NotificationCenter::workspaceCenter();
  for (const auto name : {platform::screensDidWake, platform::sessionDidBecomeActive})
    observations_.push_back(workspace.addObserver(name, reregisterHotkeys));
}

void AppDelegate::settingsDidChange() {
  // Not at once: what posted this may be an action of the very menu that is replaced.
  platform::MainQueue::async([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) self->rebuildStatusMenu();
  });
}

void AppDelegate::perform(HotkeyAction action) {
  switch (action) {
    case HotkeyAction::captureText:
      captureText();
      break;
    case HotkeyAction::captureTextNoBreaks:
      captureTextJoined();
      break;
    case HotkeyAction::captureAndSpeak:
      captureAndSpeak();
      break;
    case HotkeyAction::captureBarcode:
      captureBarcode();
      break;
    case HotkeyAction::captureLastSelection:
      captureLastSelection();
      break;
    case HotkeyAction::stopSpeaking:
      stopSpeaking();
      break;
    case HotkeyAction::toggleAdditiveClipboard:
      toggleAdditive();
      break;
    case HotkeyAction::clearAdditiveClipboard:
      clearAdditive();
      break;
  }
}

}  // namespace lumiscan
