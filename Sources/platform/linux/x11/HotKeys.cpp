#include "platform/linux/x11/HotKeys.h"

#include <QCoreApplication>
#include <algorithm>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyCodes.h"

namespace lumiscan::desktop::x11 {

namespace {

/// A grab holds for exact modifiers, so each combination is grabbed with every state of Caps Lock and Num
/// Lock.
constexpr std::uint16_t lockStates[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                        XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};
constexpr std::uint16_t ourModifiers =
    XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

std::uint16_t withLocks(std::uint16_t modifiers, std::uint16_t locks) {
  return static_cast<std::uint16_t>(modifiers | locks);
}

}  // namespace

X11HotKeys::X11HotKeys(xcb_connection_t* connection, std::function<xcb_window_t()> keyTaker)
    : connection_(connection),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root),
      keyTaker_(std::move(keyTaker)) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeys::~X11HotKeys() {
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

platform::HotKeyRegistration X11HotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                             platform::HotKeyID id) {
  const auto key = keycode(keyCode);
  if (!key) return {platform::hotKeyInvalidErr, 0};
  const Combination combination{*key, modifierMask(modifiers)};
  const auto known = grabs_.find(combination);
  if (known != grabs_.end() && known->second.ref != 0) return {platform::hotKeyExistsErr, 0};
  if (known == grabs_.end() && !grab(combination)) return {platform::hotKeyExistsErr, 0};
  grabs_[combination] = {++lastRef_, id};
  return {platform::noErr, lastRef_};
}

void X11HotKeys::unregisterEventHotKey(platform::HotKeyRef ref) {
  const auto found = std::find_if(grabs_.begin(), grabs_.end(),
                                  [ref](const auto& entry) { return ref != 0 && entry.second.ref == ref; });
  if (found == grabs_.end()) return;
  found->second.ref = 0;
  if (sweepScheduled_) return;
  sweepScheduled_ = true;
  QMetaObject::invokeMethod(
      &context_, [this] { ungrabUnregistered(); }, Qt::QueuedConnection);
}

void X11HotKeys::ungrabUnregistered() {
  sweepScheduled_ = false;
  for (auto entry = grabs_.begin(); entry != grabs_.end();) {
    if (entry->second.ref != 0) {
      ++entry;
      continue;
    }
    ungrab(entry->first);
    entry = grabs_.erase(entry);
  }
}

bool X11HotKeys::grab(Combination combination) {
  std::vector<xcb_void_cookie_t> requests;
  for (const std::uint16_t locks : lockStates)
    requests.push_back(xcb_grab_key_checked(connection_, /*owner_events=*/1, root_,
                                            withLocks(combination.second, locks), combination.first,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  bool granted = true;
  for (const auto request : requests)
    if (Reply<xcb_generic_error_t>(xcb_request_check(connection_, request))) granted = false;
  // All or nothing: a hotkey that works only while Num Lock is off would puzzle more than none.
  if (!granted) ungrab(combination);
  return granted;
}

void X11HotKeys::ungrab(Combination combination) {
  for (const std::uint16_t locks : lockStates)
    xcb_ungrab_key(connection_, combination.first, root_, withLocks(combination.second, locks));
  xcb_flush(connection_);
}

bool X11HotKeys::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  auto* event = static_cast<xcb_generic_event_t*>(message);
  switch (event->response_type & 0x7F) {
    case XCB_KEY_PRESS:
      keyPressed(*reinterpret_cast<xcb_key_press_event_t*>(event));
      break;
    case XCB_KEY_RELEASE: {
      const auto& release = *reinterpret_cast<const xcb_key_release_event_t*>(event);
      if (heldKey_ == release.detail) heldKey_.reset();
      lastRelease_ = {release.detail, release.time};
      break;
    }
    case XCB_FOCUS_OUT: {
      // While a hotkey is held, its grab has the keyboard. The toolkit would take the focus away meanwhile
      // from the window that is about to get the key.
      const auto& focusOut = *reinterpret_cast<const xcb_focus_out_event_t*>(event);
      return focusOut.mode == XCB_NOTIFY_MODE_GRAB && focusOut.event == keyTaker_();
    }
    default:
      break;
  }
  return false;
}

bool X11HotKeys::isRepeat(const xcb_key_press_event_t& event) {
  // A held key comes as presses alone, or as pairs of a release and a press at the same moment.
  const bool repeat =
      heldKey_ == event.detail || (lastRelease_.key == event.detail && lastRelease_.time == event.time);
  heldKey_ = event.detail;
  return repeat;
}

void X11HotKeys::keyPressed(xcb_key_press_event_t& event) {
  const bool repeat = isRepeat(event);
  // A press that begins a grab comes to the window of the grab, the root, where the toolkit would leave it;
  // what follows comes to the window with the focus.
  const xcb_window_t taker = keyTaker_();
  if (taker != XCB_WINDOW_NONE && (event.event == root_ || event.event == taker)) {
    event.event = taker;
    return;
  }
  if (repeat) return;
  const auto grab = grabs_.find({event.detail, static_cast<std::uint16_t>(event.state & ourModifiers)});
  if (grab == grabs_.end() || grab->second.ref == 0 || !handler_) return;
  const platform::HotKeyEvent pressed{grab->second.id};
  handler_(&pressed);
}

}  // namespace lumiscan::desktop::x11
