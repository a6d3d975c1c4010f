#include "platform/linux/x11/InstanceClaim.h"

#include <unistd.h>

#include <string>
#include <utility>

namespace lumiscan::desktop::x11 {

namespace {

/// Owns the selection with a window of its own, unless someone does.
bool own(const Connection& connection, xcb_atom_t selection) {
  xcb_connection_t* const x = connection.get();
  const xcb_window_t window = xcb_generate_id(x);
  xcb_create_window(x, 0, window, connection.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, 0, nullptr);
  // Of two that start at once one must see the other.
  const ServerGrab grab(x);
  const bool isFree = selectionOwner(x, selection) == XCB_WINDOW_NONE;
  if (isFree) xcb_set_selection_owner(x, window, selection, XCB_TIME_CURRENT_TIME);
  return isFree;
}

}  // namespace

std::unique_ptr<InstanceClaim> InstanceClaim::make() {
  auto connection = Connection::open();
  // Several users may share a display.
  const std::string name = "_LUMISCAN_INSTANCE_" + std::to_string(getuid());
  if (connection && !own(*connection, atom(connection->get(), name))) return nullptr;
  return std::unique_ptr<InstanceClaim>(new InstanceClaim(std::move(connection)));
}

}  // namespace lumiscan::desktop::x11
