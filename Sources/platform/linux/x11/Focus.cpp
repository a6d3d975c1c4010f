#include "platform/linux/x11/Focus.h"

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

xcb_window_t FocusLoan::focusedWindow() const {
  const Reply<xcb_get_input_focus_reply_t> answer(
      xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  return answer ? answer->focus : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

void FocusLoan::focus(xcb_window_t window) const {
  // Checked, so that an error for a window that has just gone comes here and not to the toolkit's log.
  const auto request =
      xcb_set_input_focus_checked(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_TIME_CURRENT_TIME);
  const Reply<xcb_generic_error_t> error(xcb_request_check(connection_, request));
}

void FocusLoan::take(xcb_window_t window) {
  if (borrower_ == XCB_WINDOW_NONE) lender_ = focusedWindow();
  borrower_ = window;
  focus(window);
}

void FocusLoan::giveBack() {
  if (borrower_ == XCB_WINDOW_NONE) return;
  // Once the borrower is unmapped the server has moved the focus to the root or to nobody.
  const xcb_window_t now = focusedWindow();
  const bool nobodyHasIt = now == XCB_WINDOW_NONE || now == XCB_INPUT_FOCUS_POINTER_ROOT || now == borrower_;
  if (nobodyHasIt && lender_ > XCB_INPUT_FOCUS_POINTER_ROOT) focus(lender_);
  lender_ = borrower_ = XCB_WINDOW_NONE;
}

}  // namespace lumiscan::desktop::x11
