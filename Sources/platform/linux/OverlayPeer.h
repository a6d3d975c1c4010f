#pragma once

#include <xcb/xcb.h>

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

#include "platform/Window.h"
#include "platform/linux/x11/Display.h"
#include "platform/linux/x11/UnmanagedWindow.h"

namespace lumiscan::desktop {

class OverlaySession;

/// A borderless window above everything else, over one screen. Whatever its content marks to be drawn again,
/// only the pixels that have ink, or had it, are painted. Main thread only.
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

  // Called by the session. Positions are in pixels of the X screen, origin at its top left, y downwards.
  xcb_window_t windowID() const {
    return native_ ? native_->id() : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  }
  void mouseEvent(platform::Window::MousePhase phase, QPoint root);
  void keyPressed(const xcb_key_press_event_t& event);
  /// `pixels` of the window have lost what was painted there.
  void exposed(const QRect& pixels);
  /// Hands the window's content the desktop's cancel command.
  void cancel();
  /// Whether the screen over which the window was shown is still there, and as it was.
  bool coversItsScreen() const;
  /// Paints nothing but what is behind the window until it is no longer concealed.
  void setConcealed(bool concealed);
  /// Of the X screen.
  QRect pixels() const { return native_ ? native_->pixels() : QRect(); }
  /// Freezes what the window covers, where that is still to be done.
  void freeze();

 private:
  void open();
  /// From 0, 0 on.
  QRect allPixels() const { return {QPoint(0, 0), native_->pixels().size()}; }
  void useFrozenDesktop();
  void fetchBehind();
  void schedulePaint();
  void paint();
  void paint(const QRect& pixels);
  void eraseAll();

  platform::Window& window_;
  OverlaySession& session_;
  QObject context_;
  std::unique_ptr<x11::UnmanagedWindow> native_;
  x11::ScreenLayout::Place place_;
  x11::OverlayGround ground_;
  QRegion dirty_;    ///< What is to be drawn again.
  QRegion painted_;  ///< Where ink shows.
  QTimer paintTimer_;
  QTimer fetchTimer_;
  std::chrono::steady_clock::time_point lastPaint_;
  bool concealed_ = false;
};

}  // namespace lumiscan::desktop
