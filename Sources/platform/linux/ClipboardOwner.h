#pragma once

#include <xcb/xcb.h>

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/IncrementalTransfer.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop {

/// Owns the X clipboard while the program offers a text there, and gives it to whoever asks, in every common
/// form and of any size. On a connection of its own, served by the event loop, and on a new one with the same
/// text when that breaks, as where memory is too short for what the server sent. Main thread only.
///
/// The toolkit's own clipboard takes the selection over as of the last event that it saw. Where another
/// program has taken it since, the server refuses that; here each take-over is as of now.
class ClipboardOwner {
 public:
  ClipboardOwner();
  ClipboardOwner(const ClipboardOwner&) = delete;
  ClipboardOwner& operator=(const ClipboardOwner&) = delete;

  /// Takes the clipboard over and offers `text` (valid UTF-8), in one step; without a text leaves it empty.
  void offer(std::optional<std::string> text);
  /// Hands the text to the clipboard manager, where one runs, so that it outlives the program. Waits for it,
  /// for a second after each sign of life.
  void handToManager();

 private:
  enum Atom {
    atomClipboard,
    atomTargets,
    atomTimestamp,
    atomMultiple,
    atomSaveTargets,
    atomClipboardManager,
    atomUTF8String,
    atomPlainTextUTF8,
    atomPlainText,
    atomText,
    atomIncr,
    atomPair,
    atomNull,
    atomScratch,
    atomCount,
  };

  void connect();
  /// Connects anew, and offers the text again unless another program has taken the clipboard meanwhile.
  void reconnect();
  /// The server's clock. What comes meanwhile waits in `events_`.
  xcb_timestamp_t serverTime();
  bool ownsClipboard();
  void handleEvents();
  void handle(const xcb_generic_event_t& event);
  void answer(const xcb_selection_request_event_t& request);
  /// Writes what was asked for into the property; whether that is possible.
  bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
  bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
  void writeText(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                 std::shared_ptr<const std::string> bytes);
  /// Ends the transfers of which the predicate says so, and no longer listens to receivers that have none.
  template <typename Predicate>
  void endTransfers(Predicate isOver);
  void listenTo(xcb_window_t receiver, bool listen);
  void receiverTook(const xcb_property_notify_event_t& event);

  std::unique_ptr<x11::Connection> connection_;  ///< Null when there is none to be had.
  xcb_connection_t* x_ = nullptr;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_atom_t atoms_[atomCount] = {};
  std::unique_ptr<QSocketNotifier> notifier_;
  std::deque<x11::Reply<xcb_generic_event_t>> events_;
  std::shared_ptr<const std::string> text_;  ///< Null when we don't own the clipboard.
  xcb_timestamp_t ownedSince_ = XCB_CURRENT_TIME;
  std::vector<IncrementalTransfer> transfers_;
  bool managerAnswered_ = false;
  QTimer patience_;  ///< Ends transfers whose receivers no longer take anything.
};

}  // namespace lumiscan::desktop
