#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/StatusBar.h"

namespace lumiscan::desktop {

class SessionBus;

/// The trays of Linux panels: those that ask for items over D-Bus go first, then those that embed windows.
/// Made after the application object.
class TrayStatusBar : public platform::StatusBar {
 public:
  /// `prefersDark` tells what colours the user prefers. Both outlive the bar's items.
  TrayStatusBar(SessionBus& bus, std::function<bool()> prefersDark)
      : bus_(bus), prefersDark_(std::move(prefersDark)) {}

  std::unique_ptr<platform::StatusItem> statusItem(double length) override;
  std::optional<platform::SymbolImage> symbolImage(std::string_view name,
                                                   std::string_view accessibilityDescription) override;

 private:
  SessionBus& bus_;
  std::function<bool()> prefersDark_;
};

}  // namespace lumiscan::desktop
