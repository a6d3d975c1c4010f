#include "platform/linux/StatusBar.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QToolTip>
#include <utility>

#include "platform/Logger.h"
#include "platform/linux/Menu.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/StatusIcon.h"
#include "platform/linux/Symbols.h"
#include "platform/linux/statusnotifier/Item.h"
#include "platform/linux/x11/TrayWindow.h"

namespace lumiscan::desktop {

namespace {

constexpr int toolTipDelay = 700;  // Milliseconds, as the toolkit's own.

/// Where a menu opens below an icon at the top of the screen, or above one at the bottom. `icon` is relative
/// to the mouse, in pixels.
QPoint besideIcon(const QRect& icon) {
  const QPoint mouse = QCursor::pos();
  const QScreen* screen = QGuiApplication::screenAt(mouse);
  if (!screen) return mouse;
  const bool isAtTop = mouse.y() < screen->geometry().center().y();
  const QPoint corner = isAtTop ? QPoint(icon.left(), icon.top() + icon.height()) : icon.topLeft();
  return mouse + (QPointF(corner) / screen->devicePixelRatio()).toPoint();
}

class TrayItem : public platform::StatusItem {
 public:
  TrayItem(SessionBus& bus, ColorScheme& colorScheme) : bus_(bus), colorScheme_(colorScheme) {
    offerOverTheBus();
    QObject::connect(&bus_, &SessionBus::changed, &context_, [this] { offerOverTheBus(); });
    window_.trayChanged = [this] { choosePlace(); };
    window_.picture = [this](int side, const QColor& color) {
      return statusPicture(button_, side, color, Halo::none);
    };
    window_.pressed = [this](const QRect& window) { openMenu(besideIcon(window)); };
    window_.hovered = [this](bool inside) { hover(inside); };
    toolTipTimer_.setSingleShot(true);
    toolTipTimer_.setInterval(toolTipDelay);
    QObject::connect(&toolTipTimer_, &QTimer::timeout, &context_,
                     [this] { QToolTip::showText(QCursor::pos(), QString::fromStdString(button_.toolTip)); });
  }

  bool hasButton() const override { return true; }
  void setButton(platform::StatusItemButton button) override {
    button_ = std::move(button);
    notifierItem_->setButton(button_);
    window_.repaint();
  }
  void setMenu(std::shared_ptr<platform::Menu> menu) override {
    menu_ = std::move(menu);
    notifierItem_->setMenu(menu_);
  }
  const std::shared_ptr<platform::Menu>& menu() const override { return menu_; }

 private:
  /// Anew for each bus.
  void offerOverTheBus() {
    notifierItem_ = std::make_unique<statusnotifier::Item>(bus_.connection(), colorScheme_);
    QObject::connect(notifierItem_.get(), &statusnotifier::Item::changed, &context_,
                     [this] { choosePlace(); });
    QObject::connect(notifierItem_.get(), &statusnotifier::Item::activated, &context_,
                     [this] { openMenu(QCursor::pos()); });
    notifierItem_->setButton(button_);
    notifierItem_->setMenu(menu_);
    // Later, since the caller who makes the item sets the button and the menu first.
    QMetaObject::invokeMethod(
        &context_, [this] { choosePlace(); }, Qt::QueuedConnection);
  }

  /// In one tray only: some panels have both kinds.
  void choosePlace() {
    if (!notifierItem_->isKnown()) return;
    if (notifierItem_->isShown())
      window_.undock();
    else if (window_.hasTray())
      window_.dock(qGuiApp->devicePixelRatio());
    else if (!std::exchange(missingTold_, true))
      platform::Logger("statusItem")
          .info("no tray on this desktop: the status item appears when there is one");
  }

  void openMenu(const QPoint& position) {
    hover(false);
    popup_.popUp(menu_, position, colorScheme_.isDark());
  }

  void hover(bool inside) {
    toolTipTimer_.stop();
    if (inside)
      toolTipTimer_.start();
    else
      QToolTip::hideText();
  }

  SessionBus& bus_;
  ColorScheme& colorScheme_;
  QObject context_;
  QTimer toolTipTimer_;
  platform::StatusItemButton button_;
  std::shared_ptr<platform::Menu> menu_;
  PopupMenu popup_;
  std::unique_ptr<statusnotifier::Item> notifierItem_;
  x11::TrayWindow window_;
  bool missingTold_ = false;
};

}  // namespace

std::unique_ptr<platform::StatusItem> TrayStatusBar::statusItem(double) {
  // How long an item is, is a matter of the panel here: all are square.
  return std::make_unique<TrayItem>(bus_, colorScheme_);
}

std::optional<platform::SymbolImage> TrayStatusBar::symbolImage(std::string_view name,
                                                                std::string_view accessibilityDescription) {
  if (!symbolOutline(name)) return std::nullopt;
  return platform::SymbolImage{std::string(name), std::string(accessibilityDescription)};
}

}  // namespace lumiscan::desktop
