#include "platform/linux/x11/HotKeys.h"

#include <QCoreApplication>
#include <algorithm>
#include <string_view>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyCodes.h"

namespace lumiscan::desktop::x11 {

namespace {

/// Every state of the locks: a grab holds for exact modifiers, so each combination is grabbed with all of
/// them.
std::vector<std::uint16_t> statesOf(std::uint16_t locks) {
  std::vector<std::uint16_t> states;
  for (unsigned state = locks;; state = (state - 1) & locks) {
    states.push_back(static_cast<std::uint16_t>(state));
    if (state == 0) return states;
  }
}

/// The type of the events of the server's keyboard extension; 0, which no event has, where it lacks that. The
/// extension's C header is none for C++.
std::uint8_t keyboardEventType(xcb_connection_t* connection) {
  constexpr std::string_view name = "XKEYBOARD";
  const auto request = xcb_query_extension(connection, name.size(), name.data());
  const Reply<xcb_query_extension_reply_t> extension(xcb_query_extension_reply(connection, request, nullptr));
  return extension && extension->present ? extension->first_event : std::uint8_t{0};
}

std::uint16_t withLocks(std::uint16_t modifiers, std::uint16_t locks) {
  return static_cast<std::uint16_t>(modifiers | locks);
}

}  // namespace

X11HotKeys::X11HotKeys(xcb_connection_t* connection, std::function<xcb_window_t()> keyTaker)
    : connection_(connection),
      root_(screenOf(connection).root),
      keyTaker_(std::move(keyTaker)),
      keyboardEventType_(keyboardEventType(connection)),
      modifierMap_(ModifierMap::read(connection)),
      heldKey_(connection, root_) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeys::~X11HotKeys() {
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

void X11HotKeys::leave() {
  handler_ = nullptr;
  for (Entry& entry : entries_) entry.ref = 0;
  ungrabUnregistered();
}

std::optional<X11HotKeys::Combination> X11HotKeys::combinationOf(std::uint32_t keyCode,
                                                                 std::uint32_t modifiers) const {
  const auto key = keycode(keyCode);
  const auto mask = modifierMap_.mask(modifiers);
  if (!key || !mask) return std::nullopt;
  return Combination{*key, *mask};
}

platform::HotKeyRegistration X11HotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                             platform::HotKeyID id) {
  const auto combination = combinationOf(keyCode, modifiers);
  if (!combination) return {platform::hotKeyInvalidErr, 0};
  const auto known = std::ranges::find(entries_, combination, &Entry::grabbed);
  if (known != entries_.end()) {
    if (known->ref != 0) return {platform::hotKeyExistsErr, 0};
    *known = {keyCode, modifiers, id, ++lastRef_, combination};
    return {platform::noErr, lastRef_};
  }
  if (!grab(*combination)) return {platform::hotKeyExistsErr, 0};
  entries_.push_back({keyCode, modifiers, id, ++lastRef_, combination});
  return {platform::noErr, lastRef_};
}

void X11HotKeys::unregisterEventHotKey(platform::HotKeyRef ref) {
  const auto found = std::ranges::find(entries_, ref, &Entry::ref);
  if (ref == 0 || found == entries_.end()) return;
  found->ref = 0;
  if (sweepScheduled_) return;
  sweepScheduled_ = true;
  QMetaObject::invokeMethod(
      &context_, [this] { ungrabUnregistered(); }, Qt::QueuedConnection);
}

void X11HotKeys::ungrabUnregistered() {
  sweepScheduled_ = false;
  for (const Entry& entry : entries_)
    if (entry.ref == 0 && entry.grabbed) ungrab(*entry.grabbed);
  std::erase_if(entries_, [](const Entry& entry) { return entry.ref == 0; });
}

bool X11HotKeys::grab(Combination combination) {
  std::vector<xcb_void_cookie_t> requests;
  for (const std::uint16_t locks : statesOf(modifierMap_.locks()))
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
  for (const std::uint16_t locks : statesOf(modifierMap_.locks()))
    xcb_ungrab_key(connection_, combination.first, root_, withLocks(combination.second, locks));
  xcb_flush(connection_);
}

bool X11HotKeys::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  auto& event = *static_cast<xcb_generic_event_t*>(message);
  switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
      keyPressed(reinterpret_cast<xcb_key_press_event_t&>(event));
      return false;
    case XCB_KEY_RELEASE:
      heldKey_.released(reinterpret_cast<const xcb_key_release_event_t&>(event));
      return false;
    case XCB_FOCUS_OUT:
      // While a hotkey is held or a session has the keyboard, the focus stays where it is. The toolkit would
      // take it from its window meanwhile: a field would miss the key, any other control lose its ring.
      return reinterpret_cast<const xcb_focus_out_event_t&>(event).mode == XCB_NOTIFY_MODE_GRAB;
    default:
      break;
  }
  if (isMappingChange(event) && !mappingScheduled_) {
    // One change comes as several events.
    mappingScheduled_ = true;
    QMetaObject::invokeMethod(
        &context_, [this] { followMapping(); }, Qt::QueuedConnection);
  }
  return heldKey_.handleWatched(event);
}

bool X11HotKeys::isMappingChange(const xcb_generic_event_t& event) const {
  const int type = event.response_type & 0x7F;
  // The server tells a client of this once: as the extension does, to one that asked it to, as the toolkit
  // does.
  if (type == XCB_MAPPING_NOTIFY) return true;
  // Which of the extension's events it is: a new keyboard or a new map.
  constexpr std::uint8_t newKeyboard = 0, newMap = 1;
  return keyboardEventType_ != 0 && type == keyboardEventType_ &&
         (event.pad0 == newKeyboard || event.pad0 == newMap);
}

void X11HotKeys::followMapping() {
  mappingScheduled_ = false;
  const ModifierMap map = ModifierMap::read(connection_);
  if (map == modifierMap_) return;
  for (Entry& entry : entries_) {
    if (entry.grabbed) ungrab(*entry.grabbed);
    entry.grabbed.reset();
  }
  modifierMap_ = map;
  for (Entry& entry : entries_) {
    const auto combination = combinationOf(entry.keyCode, entry.modifiers);
    if (!combination || std::ranges::count(entries_, combination, &Entry::grabbed) > 0) continue;
    if (grab(*combination)) entry.grabbed = combination;
  }
}

void X11HotKeys::keyPressed(xcb_key_press_event_t& event) {
  const bool repeats = heldKey_.repeats(event);
  // A press that begins a grab comes to the window of the grab, the root, where the toolkit would leave it;
  // what follows comes to the window with the focus.
  const xcb_window_t taker = keyTaker_();
  if (taker != XCB_WINDOW_NONE && (event.event == root_ || event.event == taker)) {
    event.event = taker;
    return;
  }
  if (repeats) return;
  constexpr unsigned allModifiers = 0xFF;  // Above them are the mouse buttons and the layout.
  const Combination pressed{event.detail,
                            static_cast<std::uint16_t>(event.state & allModifiers & ~modifierMap_.locks())};
  const auto entry = std::ranges::find(entries_, std::optional(pressed), &Entry::grabbed);
  if (entry == entries_.end() || entry->ref == 0) return;
  heldKey_.watchRelease();
  if (!handler_) return;
  const platform::HotKeyEvent hotKeyEvent{entry->id};
  handler_(&hotKeyEvent);
}

}  // namespace lumiscan::desktop::x11
