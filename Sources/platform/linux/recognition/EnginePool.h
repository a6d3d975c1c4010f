#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Engines that are loaded, each lent to one caller at a time and kept for the next one. Any thread.
class EnginePool {
 public:
  using Clock = std::chrono::steady_clock;
  using Load = std::function<platform::Result<std::shared_ptr<Engine>>(const EngineKey&)>;

  /// `load` makes an engine; it may take long and is called from several threads at once.
  explicit EnginePool(Load load);

  /// An engine of the caller's own; it goes back to the pool when the last copy of the pointer goes, which
  /// must be before the pool does. Waits for one that is being loaded ahead, or loads one: one that was only
  /// announced may need the caller's thread to be loaded.
  platform::Result<std::shared_ptr<Engine>> borrow(const EngineKey& key);

  /// Says that `loadAhead` will be called soon with this key. False when an engine is there or coming
  /// already, and there is nothing to do.
  bool announce(const EngineKey& key);
  /// Loads the announced engine, unless a borrower came first and did; a failure shows with the next
  /// `borrow`.
  void loadAhead(const EngineKey& key);

  /// Frees the engines that nobody has used for `age` and returns how many there were.
  std::size_t releaseUnused(Clock::duration age);

  /// Replaces the engines that nobody uses by a fresh one for each key. One that has read keeps the working
  /// memory of its longest line, half as much again as it is loaded with.
  void renew();

  std::size_t idleCount() const;

 private:
  struct Idle {
    std::shared_ptr<Engine> engine;
    Clock::time_point since;
  };
  struct Shelf {
    std::vector<Idle> idle;
    int announced = 0;  // Engines to be loaded ahead,
    int loading = 0;    // those being loaded ahead,
    int waiting = 0;    // and borrowers who wait for one of these.
  };

  void giveBack(const EngineKey& key, std::shared_ptr<Engine> engine);
  std::vector<Idle> surplus(Shelf& shelf);

  Load load_;
  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::map<EngineKey, Shelf> shelves_;
};

}  // namespace lumiscan::desktop
