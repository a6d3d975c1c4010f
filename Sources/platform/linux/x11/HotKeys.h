#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "platform/HotKeys.h"

namespace lumiscan::desktop::x11 {

/// Global hotkeys as passive key grabs on the root window, on the toolkit's connection, whose event loop
/// brings their events. Made after the application object.
class X11HotKeys : public platform::HotKeys, private QAbstractNativeEventFilter {
 public:
  /// `keyTaker` tells which window of ours takes every key now, our hotkeys included, if one does.
  X11HotKeys(xcb_connection_t* connection, std::function<xcb_window_t()> keyTaker);
  ~X11HotKeys() override;

  void installEventHandler(Handler handler) override { handler_ = std::move(handler); }
  platform::HotKeyRegistration registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                   platform::HotKeyID id) override;
  void unregisterEventHotKey(platform::HotKeyRef ref) override;

 private:
  /// A key code and X modifiers, without the locks.
  using Combination = std::pair<xcb_keycode_t, std::uint16_t>;
  /// A combination that is grabbed. One without a registration waits for the end of the event to be let go,
  /// unless it is registered again before.
  struct Grab {
    platform::HotKeyRef ref = 0;
    platform::HotKeyID id;
  };

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void keyPressed(xcb_key_press_event_t& event);
  bool isRepeat(const xcb_key_press_event_t& event);
  bool grab(Combination combination);
  void ungrab(Combination combination);
  void ungrabUnregistered();

  xcb_connection_t* connection_;
  xcb_window_t root_;
  std::function<xcb_window_t()> keyTaker_;
  Handler handler_;
  std::map<Combination, Grab> grabs_;
  platform::HotKeyRef lastRef_ = 0;
  bool sweepScheduled_ = false;
  QObject context_;
  std::optional<xcb_keycode_t> heldKey_;
  struct Release {
    xcb_keycode_t key = 0;
    xcb_timestamp_t time = 0;
  };
  Release lastRelease_;
};

}  // namespace lumiscan::desktop::x11
