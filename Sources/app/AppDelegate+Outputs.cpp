#include <algorithm>

#include "app/AppDelegate.h"
#include "output/ClipboardService.h"
#include "output/HistoryStore.h"
#include "recognition/SpeechService.h"
#include "settings/Settings.h"

namespace lumiscan {

void AppDelegate::stopSpeaking() { SpeechService::shared().stop(); }

void AppDelegate::toggleAdditive() {
  const bool additive = !Settings::additiveEnabled();
  Settings::setBool(Settings::additiveEnabledKey, additive);
  hud_->show(additive ? "Additive clipboard on" : "Additive clipboard off");
}

void AppDelegate::clearAdditive() {
  ClipboardService::clearAdditive();
  hud_->show("Additive clipboard cleared");
}

void AppDelegate::copyHistoryItem(const platform::MenuItem& sender) {
  const auto id = platform::UUID::fromString(sender.representedObject.value_or(""));
  if (!id) return;
  const auto& items = HistoryStore::shared().items();
  const auto record =
      std::ranges::find_if(items, [&id](const CaptureRecord& each) { return each.id == *id; });
  if (record == items.end()) return;
  ClipboardService::copy(record->text);
  report("Copied from history", record->text);
}

}  // namespace lumiscan
