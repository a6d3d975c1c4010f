#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace lumiscan::desktop {

/// A thread of its own for calls that may hang, because they wait for another program. Works run one after
/// the other. A thread that hangs is left behind: nobody ever waits for it, and what its works use must be
/// theirs or shared. One thread at a time, but for the works.
class Worker {
 public:
  Worker();
  /// Lets the works that were posted run for a moment; drops those that can't.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void post(std::function<void()> work);
  /// Whether one work has been running for longer than `patience`.
  bool hangs(std::chrono::milliseconds patience) const;

  /// Whether one that hangs may be left for a new one: a few threads at the most hang at a time.
  static bool mayBeReplaced();

 private:
  struct State;
  static void run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace lumiscan::desktop
