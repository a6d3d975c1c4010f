#include "platform/linux/IncrementalTransfer.h"

#include <algorithm>
#include <utility>

namespace lumiscan::desktop {

IncrementalTransfer::IncrementalTransfer(xcb_connection_t* connection, xcb_window_t receiver,
                                         xcb_atom_t property, xcb_atom_t type, xcb_atom_t incr,
                                         std::shared_ptr<const std::string> bytes, std::size_t pieceSize)
    : connection_(connection),
      receiver_(receiver),
      property_(property),
      type_(type),
      bytes_(std::move(bytes)),
      pieceSize_(pieceSize) {
  const auto size = static_cast<std::uint32_t>(bytes_->size());
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, receiver_, property_, incr, 32, 1, &size);
}

bool IncrementalTransfer::sendNext() {
  // The end is an empty piece, which the receiver deletes like the others.
  if (endSent_) return false;
  const std::size_t size = std::min(pieceSize_, bytes_->size() - sent_);
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, receiver_, property_, type_, 8,
                      static_cast<std::uint32_t>(size), bytes_->data() + sent_);
  sent_ += size;
  endSent_ = size == 0;
  return true;
}

}  // namespace lumiscan::desktop
