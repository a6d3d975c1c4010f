#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <memory>
#include <string>

namespace lumiscan::desktop {

/// A text on its way to another program in pieces, because it is too large for one property: the INCR way of
/// the conventions between X clients. The receiver deletes a property to ask for its next piece.
class IncrementalTransfer {
 public:
  /// Announces the transfer. The owner of the connection hears of the receiver's properties. The text stays
  /// the same until it is over, whatever the clipboard holds by then.
  IncrementalTransfer(xcb_connection_t* connection, xcb_window_t receiver, xcb_atom_t property,
                      xcb_atom_t type, xcb_atom_t incr, std::shared_ptr<const std::string> bytes,
                      std::size_t pieceSize);

  bool isFor(xcb_window_t receiver, xcb_atom_t property) const {
    return receiver_ == receiver && property_ == property;
  }
  xcb_window_t receiver() const { return receiver_; }
  /// The receiver has taken what it was given; whether the transfer goes on.
  bool sendNext();

 private:
  xcb_connection_t* connection_;
  xcb_window_t receiver_;
  xcb_atom_t property_;
  xcb_atom_t type_;
  std::shared_ptr<const std::string> bytes_;
  std::size_t pieceSize_;
  std::size_t sent_ = 0;
  bool endSent_ = false;
};

}  // namespace lumiscan::desktop
