#include "settings/SettingsView.h"

#include <algorithm>
#include <utility>

#include "hotkeys/HotkeyAction.h"
#include "output/HistoryStore.h"
#include "platform/LoginItem.h"
#include "platform/TextRecognizer.h"
#include "settings/HotkeyRecorderView.h"
#include "settings/Settings.h"

namespace lumiscan {

namespace {

using platform::LoginItem;

constexpr platform::Size minimumSize{520, 520};

bool isEnabledAtLogin() { return LoginItem::mainApp().status() == platform::LoginItemStatus::enabled; }

platform::Text note(std::string text) { return {std::move(text), true, true}; }

/// Writes a Boolean setting to the store.
std::function<void(bool)> storing(std::string_view key) {
  return [key](bool value) { Settings::setBool(key, value); };
}

/// Each element once, in the order of its first place.
std::vector<std::string> withoutDuplicates(const std::vector<std::string>& list) {
  std::vector<std::string> unique;
  for (const std::string& element : list)
    if (std::ranges::find(unique, element) == unique.end()) unique.push_back(element);
  return unique;
}

}  // namespace

SettingsView::SettingsView()
    : launchAtLogin_(isEnabledAtLogin()),
      keepLineBreaks_(Settings::keepLineBreaksByDefault()),
      playSound_(Settings::playSound()),
      showHUD_(Settings::showHUD()),
      additiveEnabled_(Settings::additiveEnabled()),
      languages_(withoutDuplicates(Settings::recognitionLanguages())) {
  auto& center = platform::NotificationCenter::defaultCenter();
  observations_.push_back(center.addObserver(settingsChanged, [this] { settingsDidChange(); }));
  // The history's row shows how many records there are.
  observations_.push_back(center.addObserver(historyChanged, [this] { stateDidChange(); }));
}

platform::Form SettingsView::body() {
  return {minimumSize, {general(), recognitionLanguages(), globalShortcuts(), history()}};
}

platform::Section SettingsView::general() {
  return {"General",
          {toggle("Launch at login", launchAtLogin_, [this](bool wanted) { setLaunchAtLogin(wanted); }),
           toggle("Play sound after capture", playSound_, storing(Settings::playSoundKey)),
           toggle("Show capture confirmation", showHUD_, storing(Settings::showHUDKey)),
           toggle("Additive clipboard (append captures)", additiveEnabled_,
                  storing(Settings::additiveEnabledKey)),
           platform::Choice{"Line breaks",
                            {"Keep line breaks", "Join lines into a paragraph"},
                            keepLineBreaks_ ? 0U : 1U,
                            [this](std::size_t option) {
                              set(keepLineBreaks_, option == 0,
                                  storing(Settings::keepLineBreaksByDefaultKey));
                            }}}};
}

platform::Section SettingsView::recognitionLanguages() {
  platform::Section section{"Recognition languages", {}};
  for (const Settings::Language& language : Settings::availableLanguages)
    section.items.emplace_back(binding(language.label, language.code));
  section.items.emplace_back(
      note("Recognition support depends on the macOS version. Selecting more than three languages slows "
           "recognition down."));
  return section;
}

platform::Section SettingsView::globalShortcuts() const {
  platform::Section section{"Global shortcuts", {}};
  section.items.emplace_back(note("Click a field, then press the combination you want. Press Esc to clear."));
  for (const HotkeyAction action : allHotkeyActions)
    section.items.emplace_back(
        platform::Row{std::string(rawValue(action)) + "-" + std::to_string(hotkeyVersion_),
                      {platform::Text{std::string(title(action))}, platform::Spacer{},
                       std::static_pointer_cast<const platform::TextFieldAdapter>(
                           std::make_shared<const HotkeyRecorderView>(action))}});
  return section;
}

platform::Section SettingsView::history() {
  const std::string count = std::to_string(HistoryStore::shared().items().size());
  return {"History",
          {platform::Row{"history",
                         {platform::Text{count + " recent captures kept"}, platform::Spacer{},
                          platform::Button{"Clear History", [this] {
                                             HistoryStore::shared().clear();
                                             ++hotkeyVersion_;
                                             stateDidChange();
                                           }}}}}};
}

platform::Switch SettingsView::toggle(std::string label, bool& value, ChangeHandler changed) {
  return {std::move(label), value,
          [this, &value, changed = std::move(changed)](bool isOn) { set(value, isOn, changed); }, ""};
}

void SettingsView::set(bool& value, bool newValue, const ChangeHandler& changed) {
  if (value == newValue) return;
  value = newValue;
  stateDidChange();
  changed(newValue);
}

platform::Switch SettingsView::binding(std::string_view label, std::string_view code) {
  const auto package = platform::TextRecognizer::shared().missingPackage(code);
  return {std::string(label), std::ranges::find(languages_, code) != languages_.end(),
          [this, code = std::string(code)](bool isOn) { setLanguage(code, isOn); },
          package ? "Not installed: needs the package " + *package : std::string()};
}

void SettingsView::setLanguage(const std::string& code, bool isOn) {
  const auto place = std::ranges::find(languages_, code);
  if (isOn == (place != languages_.end())) return;
  if (isOn)
    languages_.push_back(code);
  else
    languages_.erase(place);
  stateDidChange();
  Settings::setRecognitionLanguages(languages_);
}

void SettingsView::setLaunchAtLogin(bool wanted) {
  auto& loginItem = LoginItem::mainApp();
  if (wanted ? loginItem.registerItem() : loginItem.unregisterItem()) return;
  // A switch that turns back is a change like any other, so the opposite is asked for, too.
  set(launchAtLogin_, isEnabledAtLogin(), [this](bool reverted) { setLaunchAtLogin(reverted); });
}

void SettingsView::settingsDidChange() {
  ++hotkeyVersion_;
  stateDidChange();
}

}  // namespace lumiscan
