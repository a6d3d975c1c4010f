#include "platform/linux/x11/HeldKey.h"

#include <xcb/xinput.h>

namespace lumiscan::desktop::x11 {

namespace {

/// The number by which the input extension's events are known; nothing where the server lacks it.
std::optional<std::uint8_t> inputExtension(xcb_connection_t* connection) {
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_input_id);
  if (!extension || !extension->present) return std::nullopt;
  return extension->major_opcode;
}

}  // namespace

HeldKey::HeldKey(xcb_connection_t* connection, xcb_window_t root) : connection_(connection), root_(root) {
  xcb_prefetch_extension_data(connection, &xcb_input_id);
}

bool HeldKey::repeats(const xcb_key_press_event_t& press) {
  // A held key comes as presses alone, or as pairs of a release and a press at the same moment.
  const bool repetition = held_ == press.detail || lastRelease_ == Release{press.detail, press.time};
  held_ = press.detail;
  lastPress_ = press.time;
  return repetition;
}

void HeldKey::released(const xcb_key_release_event_t& release) {
  if (held_ == release.detail) held_.reset();
  lastRelease_ = {release.detail, release.time};
  forgetRealRelease();
}

void HeldKey::forgetRealRelease() {
  // The server tells of it twice, in either order.
  if (lastRelease_ == lastRealRelease_) lastRelease_ = {};
}

void HeldKey::watchRelease() {
  if (!watches_) selectRawReleases(true);
}

bool HeldKey::handleWatched(const xcb_generic_event_t& event) {
  if (!watches_ || (event.response_type & 0x7F) != XCB_GE_GENERIC) return false;
  const auto& release = reinterpret_cast<const xcb_input_raw_key_release_event_t&>(event);
  if (release.extension != inputExtension(connection_) || release.event_type != XCB_INPUT_RAW_KEY_RELEASE)
    return false;
  lastRealRelease_ = {static_cast<xcb_keycode_t>(release.detail), release.time};
  forgetRealRelease();
  if (held_ == release.detail) held_.reset();
  // Not at once: of a press that follows while a session begins or ends, the release may go to another
  // program before this one can ask for it again.
  constexpr xcb_timestamp_t aWhile = 1000;  // Milliseconds.
  if (!held_ && release.time - lastPress_ >= aWhile) selectRawReleases(false);
  return true;
}

void HeldKey::selectRawReleases(bool wanted) {
  if (!inputExtension(connection_)) return;
  watches_ = wanted;
  const struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
              wanted ? static_cast<std::uint32_t>(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE) : 0U};
  xcb_input_xi_select_events(connection_, root_, 1, &selection.head);
  xcb_flush(connection_);
}

}  // namespace lumiscan::desktop::x11
