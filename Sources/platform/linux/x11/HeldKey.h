#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace lumiscan::desktop::x11 {

/// Tells the repetitions of a key that is held down from its press. Sees what the server sends on the
/// toolkit's connection. Main thread only.
class HeldKey {
 public:
  HeldKey(xcb_connection_t* connection, xcb_window_t root);

  /// Takes note of a press; whether it is a repetition.
  bool repeats(const xcb_key_press_event_t& press);
  /// Takes note of a release.
  void released(const xcb_key_release_event_t& release);

  /// From now until a while after the key that is held is let go, the server tells of releases also when
  /// another program or nobody gets them. Without this a later press would look like a repetition.
  void watchRelease();
  /// Whether the event is one that `watchRelease` asked for; takes note of it then. Nobody else wants it.
  bool handleWatched(const xcb_generic_event_t& event);

 private:
  /// One that is known to be real is no half of a repetition.
  void forgetRealRelease();
  void selectRawReleases(bool wanted);

  xcb_connection_t* connection_;
  xcb_window_t root_;
  struct Release {
    xcb_keycode_t key = 0;
    xcb_timestamp_t time = 0;
    friend bool operator==(const Release&, const Release&) = default;
  };
  std::optional<xcb_keycode_t> held_;
  xcb_timestamp_t lastPress_ = 0;
  Release lastRelease_;  ///< That may be half of a repetition.
  Release lastRealRelease_;
  bool watches_ = false;
};

}  // namespace lumiscan::desktop::x11
