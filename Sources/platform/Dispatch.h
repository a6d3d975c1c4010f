#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace lumiscan::platform {

/// How soon a detached task should run. `userInteractive` is for what is short and can't wait, such as a
/// picture of the screen as it is now: no task of another priority keeps it from running.
enum class TaskPriority { userInteractive, userInitiated, utility };

/// The main queue, the clock behind delays, and background threads, as a desktop provides them. The
/// program uses `MainQueue`, `WorkItem`, `Timer` and `Task` below.
class Dispatcher {
 public:
  virtual ~Dispatcher() = default;

  /// Any thread. Runs `work` on the main thread after the current event; in the order of submission.
  virtual void async(std::function<void()> work) = 0;
  /// Main thread. Runs `work` there once `seconds` have passed; of works that become due at the same moment
  /// any may be first. Delays don't count time in which the machine sleeps. Returns what drops the work, and
  /// with it the delay, for which the process would wake up in vain; that may be called at any time, also
  /// when the work has run or the dispatcher has gone.
  virtual std::function<void()> asyncAfter(double seconds, std::function<void()> work) = 0;
  /// Any thread. Runs `work` on a background thread.
  virtual void detach(TaskPriority priority, std::function<void()> work) = 0;
  /// Any thread. Whether the caller is on the main thread.
  virtual bool isMainThread() const = 0;
};

/// A piece of work that can be called off. Main thread only.
class WorkItem {
 public:
  explicit WorkItem(std::function<void()> work) : work_(std::move(work)) {}

  /// From now on `perform` does nothing, and a queue that was to call it no longer waits.
  void cancel() {
    work_ = nullptr;
    if (const auto stopWaiting = std::exchange(stopWaiting_, nullptr)) stopWaiting();
  }
  void perform() {
    // A copy, since the work may drop the last reference to this item.
    if (const auto work = work_) work();
  }
  /// Called by `cancel`: drops the item from the queue that it was given to last.
  void setStopWaiting(std::function<void()> stopWaiting) { stopWaiting_ = std::move(stopWaiting); }

 private:
  std::function<void()> work_;
  std::function<void()> stopWaiting_;
};

namespace MainQueue {

/// Any thread. Runs `work` on the main thread after the current event; in the order of submission.
void async(std::function<void()> work);

/// Main thread. Performs `item` after `seconds`, unless it was cancelled by then. The queue shares the
/// ownership until either.
void asyncAfter(double seconds, const std::shared_ptr<WorkItem>& item);

/// Ends a debug build when the caller isn't on the main thread.
void assertCurrent();

}  // namespace MainQueue

namespace Task {

/// Any thread. Runs `work` on a background thread; nobody waits for it.
void detached(TaskPriority priority, std::function<void()> work);

}  // namespace Task

/// A repeating timer on the main queue. Main thread only. It fires until it is invalidated or gone.
class Timer {
 public:
  /// First fires one `interval` (seconds) from now. The caller owns the timer.
  static std::unique_ptr<Timer> scheduledRepeating(double interval, std::function<void()> block);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  void invalidate();

 private:
  Timer(double interval, std::function<void()> block);
  void scheduleNext();

  double interval_;
  std::function<void()> block_;
  std::shared_ptr<WorkItem> next_;
};

}  // namespace lumiscan::platform
