#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumiscan::platform {

class Menu;

enum class ControlState { off, on };

/// An entry of a menu. Shared, so that one which is just being chosen outlives the menu that it was in. Main
/// thread only.
struct MenuItem {
  /// UTF-8, shown as it stands: no character marks a mnemonic or any format. A tab puts what follows it into
  /// the menu's right-hand column.
  std::string title;
  /// Called with the item when the user chooses it, never from inside the menu's own events. An item without
  /// one can't be chosen.
  std::function<void(const MenuItem& sender)> action;
  bool enabled = true;
  /// Whether the action captures the screen. It is called when the screen no longer shows the menu, which can
  /// be a moment later than that of another item.
  bool capturesScreen = false;
  ControlState state = ControlState::off;  ///< On draws a check mark.
  std::shared_ptr<Menu> submenu;
  std::string toolTip;                           ///< Plain text.
  std::optional<std::string> representedObject;  ///< Whatever the program attaches.
  bool isSeparator = false;

  static std::shared_ptr<MenuItem> separator();
};

/// Whom a menu tells that it is about to open. Main thread only.
class MenuDelegate {
 public:
  virtual ~MenuDelegate() = default;
  /// The menu is about to be shown; its items may be replaced now.
  virtual void menuNeedsUpdate(Menu& menu) = 0;
};

/// A list of items. Main thread only. The desktop enables and disables nothing by itself.
class Menu {
 public:
  using Items = std::vector<std::shared_ptr<MenuItem>>;

  void addItem(std::shared_ptr<MenuItem> item) { items_.push_back(std::move(item)); }
  void removeAllItems() { items_.clear(); }
  const Items& items() const { return items_; }
  void setDelegate(std::weak_ptr<MenuDelegate> delegate) { delegate_ = std::move(delegate); }

  /// Called by the desktop before it shows the menu, at each showing.
  void update();

 private:
  Items items_;
  std::weak_ptr<MenuDelegate> delegate_;
};

}  // namespace lumiscan::platform
