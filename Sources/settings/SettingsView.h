#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/HostingView.h"
#include "platform/NotificationCenter.h"

namespace lumiscan {

/// The settings form. Its switches show the form's own state, which is read from the store once, when the
/// form is made; each change is written and announced at once. Main thread only.
class SettingsView : public platform::FormContent {
 public:
  SettingsView();

  platform::Form body() override;

 private:
  using ChangeHandler = std::function<void(bool)>;

  platform::Section general();
  platform::Section recognitionLanguages();
  platform::Section globalShortcuts() const;
  platform::Section history();

  /// A switch that shows `value`.
  platform::Switch toggle(std::string label, bool& value, ChangeHandler changed);
  /// The switch of one language.
  platform::Switch binding(std::string_view label, std::string_view code);
  /// Calls `changed` when `value` is another one than before, and only then.
  void set(bool& value, bool newValue, const ChangeHandler& changed);
  void setLanguage(const std::string& code, bool isOn);
  void setLaunchAtLogin(bool wanted);
  void settingsDidChange();

  bool launchAtLogin_;
  bool keepLineBreaks_;
  bool playSound_;
  bool showHUD_;
  bool additiveEnabled_;
  /// A set in the order of insertion, since the first language is the one that is spoken: it stays so until
  /// it is switched off.
  std::vector<std::string> languages_;
  /// Part of the identity of the shortcuts' rows: with each step they are made anew.
  int hotkeyVersion_ = 0;
  std::vector<std::shared_ptr<platform::NotificationCenter::Observation>> observations_;
};

}  // namespace lumiscan
