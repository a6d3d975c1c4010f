#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/StatusBar.h"

namespace lumiscan::desktop {

/// The trays of Linux panels: those that ask for items over D-Bus go first, then those that embed windows.
/// Made after the application object.
class TrayStatusBar : public platform::StatusBar {
 public:
  /// `prefersDark` tells what colours the user prefers; it outlives the bar's items.
  explicit TrayStatusBar(std::function<bool()> prefersDark) : prefersDark_(std::move(prefersDark)) {}

  std::unique_ptr<platform::StatusItem> statusItem(double length) override;
  std::optional<platform::SymbolImage> symbolImage(std::string_view name,
                                                   std::string_view accessibilityDescription) override;

 private:
  std::function<bool()> prefersDark_;
};

}  // namespace lumiscan::desktop
