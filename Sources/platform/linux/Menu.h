#pragma once

#include <QMenu>
#include <QPoint>
#include <QString>
#include <memory>
#include <string>

#include "platform/Menu.h"

namespace lumiscan::desktop {

/// A title as one line: control characters and line separators, other than tabs, as spaces.
QString menuLabel(const std::string& title);

/// Calls the item's action on a later turn of the main queue, that of a capture once the screen has had time
/// to be painted without the menu; unless the item can't be chosen.
void chooseLater(const std::shared_ptr<platform::MenuItem>& item);

/// Shows menus in windows of our own, where no panel shows them. Main thread only.
class PopupMenu {
 public:
  /// Shows the menu, dark or light, at a position of the toolkit's, where the screen leaves room, and returns
  /// at once. Takes the mouse and the keyboard until the menu closes. An open menu closes.
  void popUp(const std::shared_ptr<platform::Menu>& menu, const QPoint& position, bool isDark);

 private:
  std::unique_ptr<QMenu> menu_;
};

}  // namespace lumiscan::desktop
