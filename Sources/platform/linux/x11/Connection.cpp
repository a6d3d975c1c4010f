#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

std::unique_ptr<Connection> Connection::open() {
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection)) {
    xcb_disconnect(connection);
    return nullptr;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem > 1 && screenNumber > 0; --screenNumber) xcb_screen_next(&screens);
  return std::unique_ptr<Connection>(new Connection(connection, screens.data));
}

Connection::~Connection() { xcb_disconnect(connection_); }

bool Connection::isAlive() const {
  const Reply<xcb_get_input_focus_reply_t> answer(
      xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  return answer != nullptr;
}

const xcb_screen_t& screenOf(xcb_connection_t* connection) {
  return *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
  const auto request = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const Reply<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, request, nullptr));
  return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_window_t selectionOwner(xcb_connection_t* connection, xcb_atom_t selection) {
  const Reply<xcb_get_selection_owner_reply_t> answer(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
  return answer ? answer->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

bool hasCompositor(xcb_connection_t* connection) {
  // One selection a screen; a desktop session has a single one, number 0.
  return selectionOwner(connection, atom(connection, "_NET_WM_CM_S0")) != XCB_WINDOW_NONE;
}

}  // namespace lumiscan::desktop::x11
