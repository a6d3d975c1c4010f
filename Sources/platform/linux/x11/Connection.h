#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace lumiscan::desktop::x11 {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};

/// What a request answered, or null when it failed. Owned.
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

/// A connection to the X server of its own, beside the toolkit's, so that any thread may use it at any time.
class Connection {
 public:
  /// To the server that DISPLAY names; null when none answers.
  static std::unique_ptr<Connection> open();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  const xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }

  /// Asks the server for an answer and waits for it; false once the connection is broken.
  bool isAlive() const;

 private:
  Connection(xcb_connection_t* connection, const xcb_screen_t* screen)
      : connection_(connection), screen_(screen) {}

  xcb_connection_t* connection_;
  const xcb_screen_t* screen_;
};

/// The first screen of the display, which holds all monitors; the connection owns it.
const xcb_screen_t& screenOf(xcb_connection_t* connection);

/// The server's number for a name; `XCB_ATOM_NONE` when it can't be had.
xcb_atom_t atom(xcb_connection_t* connection, std::string_view name);

/// The window that owns a selection; `XCB_WINDOW_NONE` when none does or the server doesn't answer.
xcb_window_t selectionOwner(xcb_connection_t* connection, xcb_atom_t selection);

/// Keeps the server from serving anybody else, as long as it lives. What was asked for meanwhile has been
/// sent when it goes.
class ServerGrab {
 public:
  explicit ServerGrab(xcb_connection_t* connection) : connection_(connection) { xcb_grab_server(connection); }
  ~ServerGrab() {
    xcb_ungrab_server(connection_);
    xcb_flush(connection_);
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  xcb_connection_t* connection_;
};

/// Whether a compositing manager runs, which makes translucent windows translucent.
bool hasCompositor(xcb_connection_t* connection);

}  // namespace lumiscan::desktop::x11
