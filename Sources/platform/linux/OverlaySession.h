#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>
#include <functional>
#include <vector>

#include "platform/linux/x11/Display.h"
#include "platform/linux/x11/InputGrab.h"
#include "platform/linux/x11/ThemeCursors.h"

namespace lumiscan::desktop {

class OverlayPeer;
class PanelStage;

/// What the overlays share while any of them shows: the desktop behind them, the grabbed mouse and keyboard,
/// and the way by which the X server's events reach them. Main thread only, but for hiding them from a
/// picture.
class OverlaySession : private QAbstractNativeEventFilter, private x11::OverlayConcealer {
 public:
  /// The toolkit's connection. It, the displays and the panels outlive the session.
  OverlaySession(xcb_connection_t* connection, x11::X11Displays& displays, PanelStage& panels);
  ~OverlaySession() override;

  xcb_connection_t* connection() const { return connection_; }
  const x11::X11Displays& displays() const { return displays_; }
  xcb_cursor_t cursor(platform::CursorShape shape) { return cursors_.cursor(shape); }

  /// Called before an overlay over `display` shows; what it has to paint.
  x11::OverlayGround overlayOpens(OverlayPeer& overlay, platform::DisplayID display);
  std::shared_ptr<const x11::FrozenDesktop> freeze(platform::DisplayID display) {
    return displays_.freeze(display);
  }
  void overlayCloses(OverlayPeer& overlay);
  /// Called before anything of ours is painted within `pixels` of the X screen, which must not get into what
  /// the overlays there freeze: monitors may show the same part of it.
  void freezeWithin(const QRect& pixels);
  /// The same before another window of ours shows, wherever.
  void freezeAll();
  /// Directs the keys to an overlay that shows. When another program holds the mouse or the keyboard this is
  /// tried again for a moment; then the overlay is told to cancel: one that doesn't get the user's input must
  /// not stay.
  void makeKey(OverlayPeer& overlay);
  bool isKey(const OverlayPeer& overlay) const { return keyOverlay_ == &overlay && grab_.isHeld(); }
  /// Called when screens were attached, removed or changed: tells overlays that no longer cover theirs to
  /// cancel.
  void screensChanged();

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void mouseMoved(const xcb_motion_notify_event_t& event);
  void buttonChanged(const xcb_button_press_event_t& event, bool pressed);
  OverlayPeer* overlayOf(xcb_window_t window) const;
  void takeInput();

  bool conceal() override;
  void reveal() override;
  void setConcealed(bool concealed);

  xcb_connection_t* connection_;
  x11::X11Displays& displays_;
  PanelStage& panels_;
  x11::InputGrab grab_;
  x11::ThemeCursors cursors_;
  QObject context_;
  std::vector<OverlayPeer*> overlays_;
  OverlayPeer* keyOverlay_ = nullptr;
  OverlayPeer* pressedOverlay_ = nullptr;
  QTimer grabRetry_;
  int grabAttempts_ = 0;
  int concealments_ = 0;
  unsigned generation_ = 0;
};

}  // namespace lumiscan::desktop
