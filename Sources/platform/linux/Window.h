#pragma once

#include <xcb/xcb.h>

#include <QObject>
#include <memory>

#include "platform/Screen.h"
#include "platform/Window.h"
#include "platform/linux/x11/Display.h"

namespace lumiscan::desktop {

namespace x11 {
class FocusLoan;
}  // namespace x11

/// What all overlays share while any of them shows: the desktop behind them and the borrowed focus.
class OverlaySession {
 public:
  /// Both outlive the session.
  OverlaySession(x11::X11Displays& displays, x11::FocusLoan& focus) : displays_(displays), focus_(focus) {}

  /// The display that shows the middle of `frame` (global screen space).
  platform::DisplayID displayAt(const platform::Rect& frame) const;
  /// Called before an overlay over `display` shows; what it has to paint.
  x11::X11Displays::OverlayGround overlayOpens(platform::DisplayID display);
  void overlayTakesFocus(xcb_window_t window);
  void overlayClosed();

 private:
  x11::X11Displays& displays_;
  x11::FocusLoan& focus_;
  QObject context_;
  int openOverlays_ = 0;
  unsigned generation_ = 0;
};

/// A borderless window above everything else, which no window manager manages: it shows at once, without
/// animation, on every workspace, over docks and full-screen windows.
class OverlayPeer : public platform::WindowPeer {
 public:
  /// The window and the session outlive the peer.
  OverlayPeer(platform::Window& window, OverlaySession& session);
  ~OverlayPeer() override;

  void orderFront() override;
  void orderOut() override;
  void makeKey() override;
  bool isKey() const override;
  void invalidate(const platform::Rect& rect) override;

 private:
  class OverlayWindow;

  struct DeleteLater {
    void operator()(QObject* object) const { object->deleteLater(); }
  };

  platform::Window& window_;
  OverlaySession& session_;
  bool open_ = false;
  // Deleted later, since a window may be dropped by the handler of an event of its own.
  std::unique_ptr<OverlayWindow, DeleteLater> native_;
};

}  // namespace lumiscan::desktop
