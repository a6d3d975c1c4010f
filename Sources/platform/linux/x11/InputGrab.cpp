#include "platform/linux/x11/InputGrab.h"

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

bool InputGrab::take(xcb_window_t window) {
  const auto keyboard = xcb_grab_keyboard(connection_, /*owner_events=*/0, window, XCB_TIME_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto pointer = xcb_grab_pointer(
      connection_, /*owner_events=*/1, window,
      XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION,
      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_TIME_CURRENT_TIME);
  const Reply<xcb_grab_keyboard_reply_t> keyboardAnswer(
      xcb_grab_keyboard_reply(connection_, keyboard, nullptr));
  const Reply<xcb_grab_pointer_reply_t> pointerAnswer(xcb_grab_pointer_reply(connection_, pointer, nullptr));
  held_ = true;
  const bool both = keyboardAnswer && keyboardAnswer->status == XCB_GRAB_STATUS_SUCCESS && pointerAnswer &&
                    pointerAnswer->status == XCB_GRAB_STATUS_SUCCESS;
  if (!both) release();
  return both;
}

void InputGrab::release() {
  if (!held_) return;
  held_ = false;
  xcb_ungrab_pointer(connection_, XCB_TIME_CURRENT_TIME);
  xcb_ungrab_keyboard(connection_, XCB_TIME_CURRENT_TIME);
  xcb_flush(connection_);
}

}  // namespace lumiscan::desktop::x11
