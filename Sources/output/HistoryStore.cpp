#include "output/HistoryStore.h"

#include <utility>

#include "platform/Desktop.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "settings/Settings.h"

namespace lumiscan {

HistoryStore& HistoryStore::shared() { return platform::Desktop::current().singleton<HistoryStore>(); }

HistoryStore::HistoryStore() {
  const auto stored = platform::UserDefaults::standard().dataForKey(key);
  if (!stored) return;
  if (auto records = decodedCaptureRecords(stored->bytes)) items_ = *std::move(records);
}

void HistoryStore::add(CaptureRecord record) {
  items_.insert(items_.begin(), std::move(record));
  if (items_.size() > capacity) items_.resize(capacity);
  save();
}

void HistoryStore::clear() {
  items_.clear();
  save();
}

void HistoryStore::save() const {
  if (auto json = encoded(items_))
    platform::UserDefaults::standard().setObject(key, platform::Data{*std::move(json)});
  platform::NotificationCenter::defaultCenter().post(historyChanged);
}

}  // namespace lumiscan
