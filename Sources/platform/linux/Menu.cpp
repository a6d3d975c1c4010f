#include "platform/linux/Menu.h"

#include <QAction>
#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QTextDocument>
#include <algorithm>

#include "platform/Dispatch.h"
#include "platform/linux/form/FormPalette.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop {

namespace {

using platform::Menu;
using platform::MenuItem;

/// For longer texts the toolkit would take too long, and no screen has room.
constexpr qsizetype longestToolTip = 2000;

/// Without a compositor, what a closing menu has covered is painted again by then. A capture takes the screen
/// as it is at its beginning, with a hole where a program was slower.
constexpr double repaintSeconds = 0.2;

double secondsToRepaint() {
  auto* x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  return x11::hasCompositor(x) ? 0 : repaintSeconds;
}

/// The text for a tooltip. As a formatted text of which every character is literal: a plain one is not
/// wrapped, and taken for a formatted one if it looks like it.
QString toolTip(const std::string& text) {
  QString shown = QString::fromStdString(text);
  if (shown.size() > longestToolTip) shown = shown.left(longestToolTip) + u'…';
  return Qt::convertFromPlainText(shown, Qt::WhiteSpaceNormal);
}

QPalette menuPalette(bool isDark) {
  QPalette palette = formPalette(isDark);
  // The toolkit's own style draws borders darker than the window, and separators darker than the menu: they
  // take a ground that isn't as dark as can be.
  if (isDark && QApplication::style()->name() == QStringLiteral("fusion")) {
    palette.setColor(QPalette::Window, QColor(0x6A, 0x6A, 0x6E));
    palette.setColor(QPalette::Base, QColor(0x3A, 0x3A, 0x3D));
  }
  return palette;
}

void fill(QMenu& target, const Menu& menu);

void addSubmenu(QMenu& target, const QString& label, const std::shared_ptr<Menu>& submenu) {
  QMenu* shown = target.addMenu(label);
  shown->setPalette(target.palette());
  shown->setToolTipsVisible(true);
  fill(*shown, *submenu);
  QObject::connect(shown, &QMenu::aboutToShow, shown, [shown, submenu] {
    submenu->update();
    fill(*shown, *submenu);
  });
}

void addItem(QMenu& target, const std::shared_ptr<MenuItem>& item) {
  if (item->isSeparator) {
    target.addSeparator();
    return;
  }
  // To the toolkit a single ampersand marks a mnemonic.
  const QString label = menuLabel(item->title).replace(u'&', QStringLiteral("&&"));
  if (item->submenu) {
    addSubmenu(target, label, item->submenu);
    return;
  }
  QAction* action = target.addAction(label);
  action->setEnabled(item->enabled);
  action->setCheckable(item->state == platform::ControlState::on);
  action->setChecked(item->state == platform::ControlState::on);
  if (!item->toolTip.empty()) action->setToolTip(toolTip(item->toolTip));
  QObject::connect(action, &QAction::triggered, action, [item] { chooseLater(item); });
}

void fill(QMenu& target, const Menu& menu) {
  target.clear();
  for (const auto& item : menu.items()) addItem(target, item);
}

}  // namespace

QString menuLabel(const std::string& title) {
  QString label = QString::fromStdString(title);
  const auto breaksTheLine = [](QChar character) {
    const auto category = character.category();
    return character != u'\t' && (category == QChar::Other_Control || category == QChar::Separator_Line ||
                                  category == QChar::Separator_Paragraph);
  };
  std::replace_if(label.begin(), label.end(), breaksTheLine, QChar(u' '));
  return label;
}

void chooseLater(const std::shared_ptr<MenuItem>& item) {
  const double delay = item->capturesScreen ? secondsToRepaint() : 0;
  platform::MainQueue::asyncAfter(delay, std::make_shared<platform::WorkItem>([item] {
                                    if (item->enabled && item->action) item->action(*item);
                                  }));
}

void PopupMenu::popUp(const std::shared_ptr<Menu>& menu, const QPoint& position, bool isDark) {
  if (!menu) return;
  menu->update();
  menu_ = std::make_unique<QMenu>();
  menu_->setPalette(menuPalette(isDark));
  fill(*menu_, *menu);
  menu_->popup(position);
}

}  // namespace lumiscan::desktop
