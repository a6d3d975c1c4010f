#include "app/AppDelegate.h"

namespace lumiscan {

void AppDelegate::openSettings() {
  if (!settingsWindowController_) settingsWindowController_ = std::make_unique<SettingsWindowController>();
  settingsWindowController_->show();
}

}  // namespace lumiscan
