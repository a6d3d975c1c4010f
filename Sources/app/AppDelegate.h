#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "capture/CaptureMode.h"
#include "capture/ScreenCaptureController.h"
#include "hotkeys/HotkeyAction.h"
#include "output/CaptureRecord.h"
#include "output/ResultHUD.h"
#include "platform/Application.h"
#include "platform/Dispatch.h"
#include "platform/Menu.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"
#include "settings/SettingsWindowController.h"

namespace lumiscan {

/// The heart of the interactive mode: starts captures and turns their outcomes into results. Its source is
/// divided by topic: launch and wiring, menus, requests, outcomes, outputs. Main thread only. Owned by a
/// shared pointer, since what outlives a call holds it weakly.
class AppDelegate : public platform::ApplicationDelegate,
                    public platform::MenuDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
 public:
  void applicationDidFinishLaunching() override;

  // Requests: each starts a capture. (AppDelegate+Requests.cpp)
  void captureText();
  void captureTextJoined();
  void captureAndSpeak();
  void captureBarcode();
  void captureLastSelection();

  // Actions on what captures leave. (AppDelegate+Outputs.cpp)
  void stopSpeaking();
  void toggleAdditive();
  void clearAdditive();
  /// Copies a record of the history again: that whose id the chosen menu item represents, as text. Anything
  /// else, also the id of a record that has gone, does nothing.
  void copyHistoryItem(const platform::MenuItem& sender);

  // The status item, its menus, and the actions that are theirs alone. (AppDelegate+Menus.cpp)
  /// Called for the status menu and the history's when they are about to open.
  void menuNeedsUpdate(platform::Menu& menu) override;
  void clearHistory();
  void showAbout();
  void quit();
  /// Shows the settings window, which is kept from then on.
  void openSettings();

 private:
  void perform(HotkeyAction action);
  /// The status menu follows each change of a setting, once the event is over.
  void settingsDidChange();

  void buildStatusItem();
  /// Puts a new status menu, as the settings are now, in the place of the old one.
  void rebuildStatusMenu();
  void rebuildHistoryMenu();
  std::shared_ptr<platform::MenuItem> menuItem(std::string title, void (AppDelegate::*action)());
  std::shared_ptr<platform::MenuItem> historyItem(const CaptureRecord& record);

  void startCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride);
  /// Hands a request's end to `handleOutcome`, unless the delegate has gone by then.
  CaptureCompletion completion();

  // Outcomes. (AppDelegate+Outcome.cpp)
  void handleOutcome(const CaptureOutcome& outcome, CaptureMode mode, LineBreaksOverride lineBreaksOverride);
  void leadToScreenAccess();
  /// Recognises or decodes on a background task and comes back with `finishCapture`.
  void process(const platform::Image& image, CaptureMode mode, LineBreaksOverride lineBreaksOverride);
  void finishCapture(CaptureMode mode, LineBreaksOverride lineBreaksOverride, const std::string& text,
                     const std::vector<std::string>& payloads);
  void finishBarcodes(const std::vector<std::string>& payloads);
  void finishText(CaptureMode mode, LineBreaksOverride lineBreaksOverride, std::string text);
  void report(const std::string& title, const std::string& preview);
  void reportFailure(const std::string& title, const std::optional<std::string>& preview = std::nullopt);

  std::unique_ptr<platform::StatusItem> statusItem_;
  std::shared_ptr<ScreenCaptureController> captureController_ = std::make_shared<ScreenCaptureController>();
  std::shared_ptr<ResultHUD> hud_ = std::make_shared<ResultHUD>();
  std::unique_ptr<SettingsWindowController> settingsWindowController_;
  std::shared_ptr<platform::Menu> historyMenu_ = std::make_shared<platform::Menu>();
  std::unique_ptr<platform::Timer> reregisterTimer_;
  std::vector<std::shared_ptr<platform::NotificationCenter::Observation>> observations_;
};

}  // namespace lumiscan
