#include "platform/linux/x11/Activation.h"

#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

namespace {

/// The server's clock. The toolkit knows only the time of its last event, and a wish that came another way,
/// from a menu that the desktop shows for us, would look older than what the user did elsewhere.
xcb_timestamp_t serverTime() {
  const auto connection = Connection::open();
  if (!connection) return XCB_CURRENT_TIME;
  xcb_connection_t* const x = connection->get();
  const xcb_window_t window = xcb_generate_id(x);
  xcb_create_window_value_list_t values{};
  values.event_mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window_aux(x, XCB_COPY_FROM_PARENT, window, connection->root(), 0, 0, 1, 1, 0,
                        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &values);
  // A change of a property is an event, and each event tells the time.
  xcb_change_property(x, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
  xcb_flush(x);
  const Reply<xcb_generic_event_t> event(xcb_wait_for_event(x));
  if (!event || (event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return XCB_CURRENT_TIME;
  return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
}

}  // namespace

void activate(xcb_connection_t* connection, xcb_window_t window) {
  constexpr std::uint32_t directUserAction = 2;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = atom(connection, "_NET_ACTIVE_WINDOW");
  message.data.data32[0] = directUserAction;
  message.data.data32[1] = serverTime();
  xcb_send_event(connection, 0, screenOf(connection).root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

}  // namespace lumiscan::desktop::x11
