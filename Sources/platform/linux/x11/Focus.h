#pragma once

#include <xcb/xcb.h>

namespace lumiscan::desktop::x11 {

/// Lends the keyboard focus to windows that no window manager manages, and gives it back to the window that
/// had it. Main thread only.
class FocusLoan {
 public:
  explicit FocusLoan(xcb_connection_t* connection) : connection_(connection) {}

  /// Gives `window`, which is mapped, the focus at once. The first call remembers who had it.
  void take(xcb_window_t window);
  /// Gives the focus back, unless somebody else has taken it meanwhile or the window is gone. Does nothing
  /// without a loan.
  void giveBack();

 private:
  xcb_window_t focusedWindow() const;
  void focus(xcb_window_t window) const;

  xcb_connection_t* connection_;
  xcb_window_t lender_ = XCB_WINDOW_NONE;
  xcb_window_t borrower_ = XCB_WINDOW_NONE;
};

}  // namespace lumiscan::desktop::x11
