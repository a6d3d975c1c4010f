#pragma once

#include <QMainWindow>
#include <memory>

#include "platform/Window.h"
#include "platform/linux/Appearance.h"
#include "platform/linux/form/FormWidget.h"

namespace lumiscan::platform {
class HostingView;
}

namespace lumiscan::desktop {

/// A titled window, in the hands of the window manager. Its content is the form of the window's hosting view.
/// Main thread only.
class ManagedWindow : public platform::WindowPeer, private QMainWindow {
 public:
  /// The window and the colour scheme outlive the peer. Precondition: the window's content is a hosting view.
  ManagedWindow(platform::Window& window, ColorScheme& colorScheme);
  ~ManagedWindow() override;

  void orderFront() override;
  void orderOut() override;
  void makeKey() override;
  bool isKey() const override;
  void invalidate(const platform::Rect&) override {}  // The controls paint themselves.

 private:
  void closeEvent(QCloseEvent* event) override;
  bool event(QEvent* event) override;
  void followColorScheme();
  /// Also makes the window, whose content scrolls, no higher than the screen.
  void placeOnScreen();

  platform::Window& window_;
  platform::HostingView& content_;
  ColorScheme& colorScheme_;
  FormWidget form_;
  bool wasPlaced_ = false;
};

}  // namespace lumiscan::desktop
