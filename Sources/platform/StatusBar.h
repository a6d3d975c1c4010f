#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Menu.h"

namespace lumiscan::platform {

/// A symbol of the desktop's, by its name.
struct SymbolImage {
  std::string name;
  std::string accessibilityDescription;
  bool isTemplate = false;  ///< The desktop gives it the colour of what it stands among.
};

/// What shows in the status bar for an item.
struct StatusItemButton {
  std::optional<SymbolImage> image;
  std::string title;  ///< A text of a character or two, shown where there is no image.
  std::string toolTip;
};

/// The program's place in the status bar: the panel's tray. It shows as long as the object lives, whenever
/// the desktop has a tray, also one that comes later or again. Main thread only.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// A desktop may offer no button; `setButton` then does nothing.
  virtual bool hasButton() const = 0;
  virtual void setButton(StatusItemButton button) = 0;

  /// The menu opens when the user clicks the item. A menu that is replaced while it shows may stay until it
  /// closes.
  virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
  /// May be null.
  virtual const std::shared_ptr<Menu>& menu() const = 0;
};

/// The length of a status item that is as wide as the bar is high.
inline constexpr double squareStatusItemLength = -2;

/// The desktop's status bar. Main thread only.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// That of the installed desktop.
  static StatusBar& system();

  /// `length` is in points, or `squareStatusItemLength`. The caller owns the item, which goes before the bar.
  virtual std::unique_ptr<StatusItem> statusItem(double length) = 0;
  /// The symbol of that name; nothing when the desktop has none.
  virtual std::optional<SymbolImage> symbolImage(std::string_view name,
                                                 std::string_view accessibilityDescription) = 0;
};

}  // namespace lumiscan::platform
