#include "settings/HotkeyRecorderView.h"

#include "hotkeys/HotkeyManager.h"
#include "settings/HotkeyRecorderField.h"

namespace lumiscan {

namespace {

constexpr const char* noBindingText = "—";
constexpr platform::Font font{platform::Font::Design::monospaced, 12, platform::FontWeight::regular};

}  // namespace

std::shared_ptr<platform::TextField> HotkeyRecorderView::makeView() const {
  auto field = std::make_shared<HotkeyRecorderField>();
  field->attributes().alignment = platform::TextAlignment::center;
  field->attributes().isBezeled = true;
  field->attributes().placeholderString = "Record shortcut…";
  field->attributes().font = font;
  updateView(*field);
  field->onRecord = [self = field.get(), action = action_](std::uint32_t keyCode, std::uint32_t modifiers) {
    HotkeyManager::shared().setHotkey(HotkeyBinding{keyCode, modifiers}, action);
    self->setStringValue(HotkeyManager::displayString(keyCode, modifiers));
  };
  field->onClear = [self = field.get(), action = action_] {
    HotkeyManager::shared().setHotkey(std::nullopt, action);
    self->setStringValue(noBindingText);
  };
  return field;
}

void HotkeyRecorderView::updateView(platform::TextField& field) const {
  const auto binding = HotkeyManager::shared().hotkey(action_);
  field.setStringValue(binding ? HotkeyManager::displayString(binding->keyCode, binding->modifiers)
                               : noBindingText);
}

}  // namespace lumiscan
