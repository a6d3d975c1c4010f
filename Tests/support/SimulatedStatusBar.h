#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Alert.h"
#include "platform/StatusBar.h"

namespace lumiscan::testing {

/// What shows in a status bar.
struct ShownStatusItem {
  double length = 0;
  platform::StatusItemButton button;
  std::shared_ptr<platform::Menu> menu;
};

/// A status bar with a place for one item.
class SimulatedStatusBar : public platform::StatusBar {
 public:
  std::unique_ptr<platform::StatusItem> statusItem(double length) override {
    return std::make_unique<Item>(*this, length);
  }
  std::optional<platform::SymbolImage> symbolImage(std::string_view name,
                                                   std::string_view accessibilityDescription) override {
    if (name != knownSymbol) return std::nullopt;
    return platform::SymbolImage{std::string(name), std::string(accessibilityDescription)};
  }

  std::optional<ShownStatusItem> shown;  ///< Nothing when there is no item.
  bool hasButtons = true;
  std::string knownSymbol = "text.viewfinder";

 private:
  class Item : public platform::StatusItem {
   public:
    Item(SimulatedStatusBar& bar, double length) : bar_(bar) { bar_.shown.emplace().length = length; }
    ~Item() override { bar_.shown.reset(); }
    bool hasButton() const override { return bar_.hasButtons; }
    void setButton(platform::StatusItemButton button) override {
      if (bar_.hasButtons) bar_.shown->button = std::move(button);
    }
    void setMenu(std::shared_ptr<platform::Menu> menu) override { bar_.shown->menu = std::move(menu); }
    const std::shared_ptr<platform::Menu>& menu() const override { return bar_.shown->menu; }

   private:
    SimulatedStatusBar& bar_;
  };
};

/// Alerts that the user dismisses at once.
struct SimulatedAlerts : platform::Alerts {
  void runModal(const platform::Alert& alert) override { shown.push_back(alert); }

  std::vector<platform::Alert> shown;
};

}  // namespace lumiscan::testing
