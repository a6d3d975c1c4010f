#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "platform/HotKeys.h"
#include "platform/linux/x11/HeldKey.h"
#include "platform/linux/x11/ModifierMap.h"

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

  /// Lets every key go, for good: another program may have them from now on.
  void leave();

 private:
  /// A key code and X modifiers, without the locks.
  using Combination = std::pair<xcb_keycode_t, std::uint16_t>;
  struct Entry {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    platform::HotKeyID id;
    /// 0 for one without a registration: it waits for the end of the event to be let go, unless it is
    /// registered again before.
    platform::HotKeyRef ref = 0;
    /// What is grabbed for it; nothing where the keyboard's mapping has changed and the new combination can't
    /// be had.
    std::optional<Combination> grabbed;
  };

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void keyPressed(xcb_key_press_event_t& event);
  bool isMappingChange(const xcb_generic_event_t& event) const;
  void followMapping();
  std::optional<Combination> combinationOf(std::uint32_t keyCode, std::uint32_t modifiers) const;
  bool grab(Combination combination);
  void ungrab(Combination combination);
  void ungrabUnregistered();

  xcb_connection_t* connection_;
  xcb_window_t root_;
  std::function<xcb_window_t()> keyTaker_;
  std::uint8_t keyboardEventType_;
  ModifierMap modifierMap_;
  Handler handler_;
  std::vector<Entry> entries_;
  platform::HotKeyRef lastRef_ = 0;
  bool sweepScheduled_ = false;
  bool mappingScheduled_ = false;
  QObject context_;
  HeldKey heldKey_;
};

}  // namespace lumiscan::desktop::x11
