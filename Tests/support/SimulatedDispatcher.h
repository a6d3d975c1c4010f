#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/Dispatch.h"

namespace lumiscan::testing {

/// The main queue over a virtual clock, and background tasks that wait until a test runs them. Everything
/// runs on the test's own thread; which thread it stands for is what `isMainThread` answers.
class SimulatedDispatcher : public platform::Dispatcher {
 public:
  /// `afterEvent` runs whenever an event has been handled.
  explicit SimulatedDispatcher(std::function<void()> afterEvent) : afterEvent_(std::move(afterEvent)) {}

  void async(std::function<void()> work) override;
  std::function<void()> asyncAfter(double seconds, std::function<void()> work) override;
  void detach(platform::TaskPriority priority, std::function<void()> work) override;
  bool isMainThread() const override { return onMainThread_; }

  /// Seconds since the desktop was made.
  double now() const { return now_; }
  /// Runs what is due, and what that submits, without any time passing.
  void runMainQueue();
  /// Lets time pass, running what falls due in order of time, then of submission.
  void advance(double seconds);
  /// Runs the background tasks in order of submission, and those that they detach.
  void runBackgroundTasks();
  /// Runs the main queue and the background tasks until nothing is due.
  void settle();
  /// Runs `handle` as an event of its own.
  void handleEvent(const std::function<void()>& handle);
  /// Drops everything that waits.
  void clear();

  std::size_t backgroundTaskCount() const { return tasks_.size(); }
  platform::TaskPriority priorityOfNextTask() const { return tasks_.front().first; }

 private:
  void runDueUntil(double time);

  std::function<void()> afterEvent_;
  double now_ = 0;
  bool onMainThread_ = true;
  std::uint64_t submissions_ = 0;
  /// By the time at which they are due, then by submission.
  using Queue = std::map<std::pair<double, std::uint64_t>, std::function<void()>>;
  /// Shared, so that what drops a work may be called when this has gone.
  std::shared_ptr<Queue> mainQueue_ = std::make_shared<Queue>();
  std::deque<std::pair<platform::TaskPriority, std::function<void()>>> tasks_;
};

}  // namespace lumiscan::testing
