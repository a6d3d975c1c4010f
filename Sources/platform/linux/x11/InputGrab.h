#pragma once

#include <xcb/xcb.h>

namespace lumiscan::desktop::x11 {

/// The mouse and the keyboard for windows that no window manager gives the focus to. The focus itself stays
/// where it is: the window that has it keeps its looks and its open popups, and there is nothing to give
/// back. Main thread only.
class InputGrab {
 public:
  explicit InputGrab(xcb_connection_t* connection) : connection_(connection) {}
  ~InputGrab() { release(); }
  InputGrab(const InputGrab&) = delete;
  InputGrab& operator=(const InputGrab&) = delete;

  /// Sends all keys to `window`, which is shown, and the mouse to whichever of our windows is under it, else
  /// to `window`. Both or neither: false when another program holds one of them.
  bool take(xcb_window_t window);
  /// Does nothing when nothing is held.
  void release();
  bool isHeld() const { return held_; }

 private:
  xcb_connection_t* connection_;
  bool held_ = false;
};

}  // namespace lumiscan::desktop::x11
