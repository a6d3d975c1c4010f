#include "platform/linux/ManagedWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "platform/Display.h"
#include "platform/HostingView.h"
#include "platform/linux/StatusIcon.h"
#include "platform/linux/ToolkitConnection.h"
#include "platform/linux/form/FormPalette.h"
#include "platform/linux/x11/Activation.h"
#include "platform/linux/x11/ScreenLayout.h"

namespace lumiscan::desktop {

namespace {

Qt::WindowFlags toolkitFlags(unsigned style) {
  Qt::WindowFlags flags =
      Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
  if (style & platform::windowStyleClosable) flags |= Qt::WindowCloseButtonHint;
  if (style & platform::windowStyleMiniaturizable) flags |= Qt::WindowMinimizeButtonHint;
  return flags;
}

QSize toolkitSize(const platform::Size& size) {
  return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

}  // namespace

ManagedWindow::ManagedWindow(platform::Window& window, ColorScheme& colorScheme)
    : QMainWindow(nullptr, toolkitFlags(window.attributes().styleMask)),
      window_(window),
      content_(dynamic_cast<platform::HostingView&>(*window.contentView())),
      colorScheme_(colorScheme),
      form_(content_.form()) {
  setWindowTitle(QString::fromStdString(window.attributes().title));
  setWindowIcon(programIcon());
  setCentralWidget(&form_);
  const QSize content = toolkitSize(window.frame().size);
  setFixedSize(content.expandedTo(toolkitSize(content_.form().minimumSize)));
  content_.formChanged = [this] { form_.update(content_.form()); };
  connect(&colorScheme_, &ColorScheme::changed, this, [this] { followColorScheme(); });
}

ManagedWindow::~ManagedWindow() { content_.formChanged = nullptr; }

void ManagedWindow::placeOnScreen() {
  const platform::Rect& frame = window_.frame();
  for (const platform::Screen& screen : platform::Displays::shared().screens())
    for (const QScreen* toolkit : QGuiApplication::screens()) {
      if (x11::ScreenLayout::displayID(toolkit->name().toStdString()) != screen.displayID ||
          !contains(screen.frame, {frame.midX(), frame.midY()}))
        continue;
      const int titleHeight = style()->pixelMetric(QStyle::PM_TitleBarHeight);
      setFixedHeight(std::min(height(), qRound(screen.visibleFrame.size.height) - titleHeight));
      // The toolkit measures downwards, in points from the screen's top left.
      move(toolkit->geometry().topLeft() +
           QPoint(qRound(frame.minX() - screen.frame.minX()), qRound(screen.frame.maxY() - frame.maxY())));
    }
}

void ManagedWindow::orderFront() {
  if (!wasPlaced_) placeOnScreen();
  wasPlaced_ = true;
  followColorScheme();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
}

void ManagedWindow::orderOut() { hide(); }

void ManagedWindow::makeKey() { x11::activate(toolkitConnection(), static_cast<xcb_window_t>(winId())); }

bool ManagedWindow::isKey() const { return isActiveWindow(); }

void ManagedWindow::closeEvent(QCloseEvent* event) {
  window_.orderOut();
  // Accepted, since one that isn't would keep the program from ending.
  event->accept();
}

bool ManagedWindow::event(QEvent* event) {
  // Who comes back from the desktop's settings may have changed the colours there.
  const bool isBack = event->type() == QEvent::ActivationChange && isActiveWindow();
  if (isBack || event->type() == QEvent::ApplicationPaletteChange) followColorScheme();
  return QMainWindow::event(event);
}

void ManagedWindow::followColorScheme() { setPalette(formPalette(colorScheme_.isDark())); }

}  // namespace lumiscan::desktop
