#include "platform/NotificationCenter.h"

#include <algorithm>
#include <utility>

namespace lumiscan::platform {

std::shared_ptr<NotificationCenter::Observation> NotificationCenter::addObserver(
    std::string_view name, std::function<void()> handler) {
  std::shared_ptr<Observation> observation(new Observation(std::move(handler)));
  entries_.push_back({std::string(name), observation});
  return observation;
}

void NotificationCenter::post(std::string_view name) {
  std::erase_if(entries_, [](const Entry& entry) { return entry.observation.expired(); });
  // A copy of those to tell, since handlers may add and remove observers.
  std::vector<std::weak_ptr<Observation>> recipients;
  for (const Entry& entry : entries_)
    if (entry.name == name) recipients.push_back(entry.observation);
  for (const auto& recipient : recipients)
    if (const auto observation = recipient.lock()) observation->handler();
}

}  // namespace lumiscan::platform
