#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "app/AppDelegate.h"
#include "app/HistoryTitle.h"
#include "hotkeys/HotkeyManager.h"
#include "output/HistoryStore.h"
#include "platform/Alert.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

using platform::ControlState;
using platform::Menu;
using platform::MenuItem;

constexpr std::size_t mostHistoryItems = 10;

/// A line of the status menu. One without a title is a separator, one without an action the history's.
struct Row {
  std::string_view title;
  void (AppDelegate::*action)() = nullptr;
  std::optional<HotkeyAction> shortcut = std::nullopt;  ///< Whose binding the title shows.
  bool capturesScreen = false;
};

const std::array<Row, 17> statusMenuRows = {{
    {"Capture Text", &AppDelegate::captureText, HotkeyAction::captureText, true},
    {"Capture Text (join lines)", &AppDelegate::captureTextJoined, HotkeyAction::captureTextNoBreaks, true},
    {"Capture & Speak", &AppDelegate::captureAndSpeak, HotkeyAction::captureAndSpeak, true},
    {"Capture QR / Barcode", &AppDelegate::captureBarcode, HotkeyAction::captureBarcode, true},
    {"Capture Last Selection", &AppDelegate::captureLastSelection, HotkeyAction::captureLastSelection, true},
    {"Stop Speaking", &AppDelegate::stopSpeaking, HotkeyAction::stopSpeaking},
    {},
    {"Additive Clipboard", &AppDelegate::toggleAdditive},
    {"Clear Additive Clipboard", &AppDelegate::clearAdditive, HotkeyAction::clearAdditiveClipboard},
    {},
    {"Recent Captures"},
    {"Clear History", &AppDelegate::clearHistory},
    {},
    {"Settings…", &AppDelegate::openSettings},
    {"About Lumiscan", &AppDelegate::showAbout},
    {},
    {"Quit Lumiscan", &AppDelegate::quit},
}};

std::string titleWithShortcut(const Row& row) {
  std::string title(row.title);
  if (!row.shortcut) return title;
  if (const auto binding = HotkeyManager::shared().hotkey(*row.shortcut))
    title += '\t' + HotkeyManager::displayString(binding->keyCode, binding->modifiers);
  return title;
}

}  // namespace

void AppDelegate::buildStatusItem() {
  auto& statusBar = platform::StatusBar::system();
  statusItem_ = statusBar.statusItem(platform::squareStatusItemLength);
  if (statusItem_->hasButton()) {
    platform::StatusItemButton button;
    button.image = statusBar.symbolImage("text.viewfinder", "Lumiscan");
    if (button.image)
      button.image->isTemplate = true;
    else
      button.title = "◉";
    button.toolTip = "Lumiscan — instant text capture by Varnholt";
    statusItem_->setButton(std::move(button));
  }
  rebuildStatusMenu();
}

void AppDelegate::rebuildStatusMenu() {
  auto menu = std::make_shared<Menu>();
  for (const Row& row : statusMenuRows) {
    if (row.title.empty()) {
      menu->addItem(MenuItem::separator());
      continue;
    }
    const auto item = menuItem(titleWithShortcut(row), row.action);
    if (row.action == &AppDelegate::toggleAdditive && Settings::additiveEnabled())
      item->state = ControlState::on;
    item->capturesScreen = row.capturesScreen;
    if (!row.action) {
      rebuildHistoryMenu();
      item->submenu = historyMenu_;
    }
    menu->addItem(item);
  }
  menu->setDelegate(weak_from_this());
  if (statusItem_) statusItem_->setMenu(std::move(menu));
}

std::shared_ptr<MenuItem> AppDelegate::menuItem(std::string title, void (AppDelegate::*action)()) {
  auto item = std::make_shared<MenuItem>();
  item->title = std::move(title);
  if (action)
    item->action = [weakSelf = weak_from_this(), action](const MenuItem&) {
      if (const auto self = weakSelf.lock()) (self.get()->*action)();
    };
  return item;
}

void AppDelegate::rebuildHistoryMenu() {
  historyMenu_->removeAllItems();
  const auto& records = HistoryStore::shared().items();
  if (records.empty()) {
    const auto item = menuItem("No captures yet", nullptr);
    item->enabled = false;
    historyMenu_->addItem(item);
    return;
  }
  for (std::size_t i = 0; i < std::min(mostHistoryItems, records.size()); ++i)
    historyMenu_->addItem(historyItem(records[i]));
}

std::shared_ptr<MenuItem> AppDelegate::historyItem(const CaptureRecord& record) {
  auto item = std::make_shared<MenuItem>();
  item->title = historyTitle(record);
  item->action = [weakSelf = weak_from_this()](const MenuItem& sender) {
    if (const auto self = weakSelf.lock()) self->copyHistoryItem(sender);
  };
  item->toolTip = record.text;
  item->representedObject = record.id.uuidString();
  return item;
}

void AppDelegate::menuNeedsUpdate(Menu& menu) {
  if (&menu == historyMenu_.get())
    rebuildHistoryMenu();
  else if (statusItem_ && &menu == statusItem_->menu().get())
    HotkeyManager::shared().reregisterAll();
}

void AppDelegate::clearHistory() { HistoryStore::shared().clear(); }

void AppDelegate::openSettings() {
  if (!settingsWindowController_) settingsWindowController_ = std::make_unique<SettingsWindowController>();
  settingsWindowController_->show();
}

void AppDelegate::showAbout() {
  platform::Alert alert;
  alert.messageText = "Lumiscan 1.0";
  alert.informativeText =
      "Instant text capture for macOS, by Varnholt.\n\n"
      "Select any area of your screen — Lumiscan recognizes the text and copies it to your clipboard. It can "
      "also read QR and barcode content and speak captured text aloud.\n\n"
      "All recognition happens on-device with Apple's Vision framework.";
  alert.runModal();
}

void AppDelegate::quit() { platform::Application::shared().terminate(); }

}  // namespace lumiscan
