#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QSize>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

/// A window in the tray of a panel that embeds windows (XEmbed). On a connection of its own, served by the
/// event loop. Main thread only.
class TrayWindow {
 public:
  TrayWindow();
  ~TrayWindow();
  TrayWindow(const TrayWindow&) = delete;
  TrayWindow& operator=(const TrayWindow&) = delete;

  /// Whether there is such a tray.
  bool hasTray() const { return tray_ != XCB_WINDOW_NONE; }
  /// Puts the window into the tray, unless it is there or there is none. `scale` is in pixels per point.
  void dock(double scale);
  void undock();
  /// The content has changed.
  void repaint();

  /// A tray has come or gone; in the latter case the window with it.
  std::function<void()> trayChanged;
  /// The picture to show, square, of that many pixels, in the foreground's colour of the panel.
  std::function<QImage(int side, const QColor& foreground)> picture;
  /// The user pressed a button of the mouse on the window, which is where the rectangle says relative to the
  /// mouse, in pixels. No grab of ours is left.
  std::function<void(const QRect& window)> pressed;
  /// The mouse has come to the window, or left it.
  std::function<void(bool inside)> hovered;

 private:
  enum Atom { atomTray, atomOpcode, atomVisual, atomColors, atomXEmbedInfo, atomManager, atomCount };

  void findTray();
  void handleEvents();
  void handle(const xcb_generic_event_t& event);
  void press(const xcb_button_press_event_t& event);
  /// A number that the tray offers under that name.
  std::optional<std::uint32_t> trayProperty(Atom name, std::uint32_t offset = 0) const;
  void create(xcb_visualid_t visual);
  void askToBeDocked();
  /// Paints now, and again when the panel has had time to paint its own ground.
  void paintAndAgain();
  void paint();
  /// What the panel shows behind the window; black where that can't be read.
  QImage ground() const;
  QColor foreground() const;
  /// Whether the panel around the window is dark.
  bool isOnDark() const;

  std::unique_ptr<Connection> connection_;  ///< Null when there is none to be had.
  xcb_connection_t* x_ = nullptr;
  xcb_atom_t atoms_[atomCount] = {};
  std::unique_ptr<QSocketNotifier> notifier_;
  xcb_window_t tray_ = XCB_WINDOW_NONE;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_gcontext_t gc_ = XCB_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  std::uint8_t depth_ = 0;
  QSize size_;  ///< In pixels.
  QTimer again_;
};

}  // namespace lumiscan::desktop::x11
