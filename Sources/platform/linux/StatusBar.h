#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/StatusBar.h"
#include "platform/linux/Appearance.h"

namespace lumiscan::desktop {

class SessionBus;

/// The trays of Linux panels: those that ask for items over D-Bus go first, then those that embed windows.
/// Made after the application object.
class TrayStatusBar : public platform::StatusBar {
 public:
  /// Both outlive the bar's items.
  TrayStatusBar(SessionBus& bus, ColorScheme& colorScheme) : bus_(bus), colorScheme_(colorScheme) {}

  std::unique_ptr<platform::StatusItem> statusItem(double length) override;
  std::optional<platform::SymbolImage> symbolImage(std::string_view name,
                                                   std::string_view accessibilityDescription) override;

 private:
  SessionBus& bus_;
  ColorScheme& colorScheme_;
};

}  // namespace lumiscan::desktop
