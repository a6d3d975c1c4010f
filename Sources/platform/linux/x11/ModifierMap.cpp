#include "platform/linux/x11/ModifierMap.h"

#include <algorithm>
#include <initializer_list>
#include <span>

#include "platform/HotKeys.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop::x11 {

namespace {

// Key symbols, as the X protocol numbers them.
constexpr xcb_keysym_t scrollLock = 0xFF14;
constexpr xcb_keysym_t numLock = 0xFF7F;
constexpr xcb_keysym_t metaLeft = 0xFFE7, metaRight = 0xFFE8;
constexpr xcb_keysym_t altLeft = 0xFFE9, altRight = 0xFFEA;
constexpr xcb_keysym_t superLeft = 0xFFEB, superRight = 0xFFEC;

constexpr std::size_t modifierCount = 8;
constexpr std::size_t firstFreeModifier = 3;  // Behind Shift, Lock and Control.

/// The answers of the server about its keys.
class Mapping {
 public:
  explicit Mapping(xcb_connection_t* connection) {
    const xcb_setup_t& setup = *xcb_get_setup(connection);
    firstKey_ = setup.min_keycode;
    const auto modifiers = xcb_get_modifier_mapping(connection);
    const auto symbols = xcb_get_keyboard_mapping(
        connection, setup.min_keycode, static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1));
    modifiers_.reset(xcb_get_modifier_mapping_reply(connection, modifiers, nullptr));
    symbols_.reset(xcb_get_keyboard_mapping_reply(connection, symbols, nullptr));
  }
  explicit operator bool() const { return modifiers_ && symbols_; }

  /// The freely placed modifiers that a key with one of the symbols sets.
  std::uint16_t setBy(std::initializer_list<xcb_keysym_t> wanted) const {
    return which([&](auto keys) {
      return std::ranges::any_of(keys, [&](xcb_keycode_t key) { return has(key, wanted); });
    });
  }

  /// Those that no key sets. One can still be in force: that of a lock that was on when its key was given
  /// another.
  std::uint16_t setByNone() const {
    return which(
        [](auto keys) { return std::ranges::all_of(keys, [](xcb_keycode_t key) { return key == 0; }); });
  }

 private:
  /// The freely placed modifiers for whose keys the predicate holds.
  template <typename Predicate>
  std::uint16_t which(Predicate holds) const {
    const std::size_t keysEach = modifiers_->keycodes_per_modifier;
    const std::span keys(xcb_get_modifier_mapping_keycodes(modifiers_.get()), modifierCount * keysEach);
    unsigned mask = 0;
    for (std::size_t modifier = firstFreeModifier; modifier < modifierCount; ++modifier)
      if (holds(keys.subspan(modifier * keysEach, keysEach))) mask |= 1U << modifier;
    return static_cast<std::uint16_t>(mask);
  }
  /// Whether a key has one of the symbols on any of its levels.
  bool has(xcb_keycode_t key, std::initializer_list<xcb_keysym_t> wanted) const {
    if (key < firstKey_) return false;  // An empty place of the mapping.
    const std::span all(xcb_get_keyboard_mapping_keysyms(symbols_.get()),
                        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(symbols_.get())));
    const std::size_t each = symbols_->keysyms_per_keycode;
    const auto own = all.subspan((key - firstKey_) * each, each);
    return std::ranges::find_first_of(own, wanted) != own.end();
  }

  xcb_keycode_t firstKey_ = 0;
  Reply<xcb_get_modifier_mapping_reply_t> modifiers_;
  Reply<xcb_get_keyboard_mapping_reply_t> symbols_;
};

/// One modifier, where several are set by keys of the same name.
std::uint16_t lowest(std::uint16_t mask) { return static_cast<std::uint16_t>(mask & -mask); }

}  // namespace

ModifierMap ModifierMap::read(xcb_connection_t* connection) {
  ModifierMap map;
  const Mapping mapping(connection);
  if (!mapping) return map;
  map.option_ = lowest(mapping.setBy({altLeft, altRight}));
  // Keyboards of old have Meta in the place of Alt.
  if (map.option_ == 0) map.option_ = lowest(mapping.setBy({metaLeft, metaRight}));
  map.command_ = lowest(mapping.setBy({superLeft, superRight}));
  map.locks_ =
      static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | mapping.setByNone() |
                                 (mapping.setBy({numLock, scrollLock}) & ~(map.option_ | map.command_)));
  return map;
}

std::optional<std::uint16_t> ModifierMap::mask(std::uint32_t carbonModifiers) const {
  unsigned mask = 0;
  if (carbonModifiers & platform::cmdKey) mask |= command_;
  if (carbonModifiers & platform::shiftKey) mask |= XCB_MOD_MASK_SHIFT;
  if (carbonModifiers & platform::optionKey) mask |= option_;
  if (carbonModifiers & platform::controlKey) mask |= XCB_MOD_MASK_CONTROL;
  const bool lacksCommand = (carbonModifiers & platform::cmdKey) && command_ == 0;
  const bool lacksOption = (carbonModifiers & platform::optionKey) && option_ == 0;
  if (lacksCommand || lacksOption) return std::nullopt;
  return static_cast<std::uint16_t>(mask);
}

platform::ModifierFlags ModifierMap::flags(std::uint16_t state) const {
  platform::ModifierFlags flags = 0;
  if (state & command_) flags |= platform::modifierCommand;
  if (state & XCB_MOD_MASK_SHIFT) flags |= platform::modifierShift;
  if (state & option_) flags |= platform::modifierOption;
  if (state & XCB_MOD_MASK_CONTROL) flags |= platform::modifierControl;
  if (state & XCB_MOD_MASK_LOCK) flags |= platform::modifierCapsLock;
  return flags;
}

}  // namespace lumiscan::desktop::x11
