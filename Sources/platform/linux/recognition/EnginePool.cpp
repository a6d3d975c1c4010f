#include "platform/linux/recognition/EnginePool.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lumiscan::desktop {

namespace {
constexpr std::size_t mostIdlePerKey = 2;
constexpr std::size_t mostIdle = 16;  // One for each language, and a few.
}  // namespace

EnginePool::EnginePool(Load load) : load_(std::move(load)) {}

platform::Result<std::shared_ptr<Engine>> EnginePool::borrow(const EngineKey& key) {
  std::shared_ptr<Engine> engine;
  {
    std::unique_lock lock(mutex_);
    Shelf& shelf = shelves_[key];
    if (shelf.idle.empty() && shelf.loading > shelf.waiting) {
      ++shelf.waiting;
      arrived_.wait(lock, [&] { return !shelf.idle.empty() || shelf.loading < shelf.waiting; });
      --shelf.waiting;
    }
    if (!shelf.idle.empty()) {
      engine = std::move(shelf.idle.back().engine);
      shelf.idle.pop_back();
    } else if (shelf.announced > 0) {
      --shelf.announced;
    }
  }
  if (!engine) {
    auto loaded = load_(key);
    if (!loaded.ok()) return loaded;
    engine = std::move(loaded).value();
  }
  Engine* const raw = engine.get();
  return std::shared_ptr<Engine>(
      raw, [this, key, engine = std::move(engine)](Engine*) mutable { giveBack(key, std::move(engine)); });
}

bool EnginePool::announce(const EngineKey& key) {
  const std::lock_guard lock(mutex_);
  Shelf& shelf = shelves_[key];
  if (!shelf.idle.empty() || shelf.announced + shelf.loading > 0) return false;
  ++shelf.announced;
  return true;
}

void EnginePool::loadAhead(const EngineKey& key) {
  {
    const std::lock_guard lock(mutex_);
    Shelf& shelf = shelves_[key];
    if (shelf.announced == 0) return;
    --shelf.announced;
    ++shelf.loading;
  }
  auto loaded = load_(key);
  {
    const std::lock_guard lock(mutex_);
    --shelves_[key].loading;
  }
  if (loaded.ok()) giveBack(key, std::move(loaded).value());
  arrived_.notify_all();
}

void EnginePool::giveBack(const EngineKey& key, std::shared_ptr<Engine> engine) {
  std::vector<Idle> freed;  // Outside the lock.
  {
    const std::lock_guard lock(mutex_);
    Shelf& shelf = shelves_[key];
    shelf.idle.push_back({std::move(engine), Clock::now()});
    freed = surplus(shelf);
  }
  arrived_.notify_all();
}

/// Takes out the engines that are too many: the oldest of the shelf, then the oldest of all.
std::vector<EnginePool::Idle> EnginePool::surplus(Shelf& shelf) {
  std::vector<Idle> taken;
  const auto takeOldest = [&](Shelf& from) {
    taken.push_back(std::move(from.idle.front()));
    from.idle.erase(from.idle.begin());
  };
  while (shelf.idle.size() > mostIdlePerKey) takeOldest(shelf);
  for (;;) {
    std::size_t count = 0;
    Shelf* oldest = nullptr;
    for (auto& [key, other] : shelves_) {
      count += other.idle.size();
      if (!other.idle.empty() && (!oldest || other.idle.front().since < oldest->idle.front().since))
        oldest = &other;
    }
    if (count <= mostIdle) return taken;
    takeOldest(*oldest);
  }
}

std::size_t EnginePool::releaseUnused(Clock::duration age) {
  std::vector<Idle> freed;
  const std::lock_guard lock(mutex_);
  const Clock::time_point limit = Clock::now() - age;
  for (auto& [key, shelf] : shelves_) {
    const auto kept = std::stable_partition(shelf.idle.begin(), shelf.idle.end(),
                                            [&](const Idle& idle) { return idle.since > limit; });
    std::move(kept, shelf.idle.end(), std::back_inserter(freed));
    shelf.idle.erase(kept, shelf.idle.end());
  }
  return freed.size();
}

void EnginePool::renew() {
  std::vector<Idle> freed;
  std::vector<EngineKey> keys;
  {
    const std::lock_guard lock(mutex_);
    for (auto& [key, shelf] : shelves_) {
      if (shelf.idle.empty()) continue;
      std::ranges::move(shelf.idle, std::back_inserter(freed));
      shelf.idle.clear();
      ++shelf.announced;
      keys.push_back(key);
    }
  }
  freed.clear();
  for (const EngineKey& key : keys) loadAhead(key);
}

std::size_t EnginePool::idleCount() const {
  const std::lock_guard lock(mutex_);
  std::size_t count = 0;
  for (const auto& [key, shelf] : shelves_) count += shelf.idle.size();
  return count;
}

}  // namespace lumiscan::desktop
