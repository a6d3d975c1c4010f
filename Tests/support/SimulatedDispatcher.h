#pragma once

#include <algorithm>
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

  void async(std::function<void()> work) override { asyncAfter(0, std::move(work)); }
  std::function<void()> asyncAfter(double seconds, std::function<void()> work) override {
    const Queue::key_type key{now_ + std::max(seconds, 0.0), submissions_++};
    mainQueue_->emplace(key, std::move(work));
    return [key, weakQueue = std::weak_ptr(mainQueue_)] {
      // Dropping a work may lead here again.
      if (const auto queue = weakQueue.lock()) queue->extract(key);
    };
  }
  void detach(platform::TaskPriority priority, std::function<void()> work) override {
    tasks_.emplace_back(priority, std::move(work));
  }
  bool isMainThread() const override { return onMainThread_; }

  /// Seconds since the desktop was made.
  double now() const { return now_; }
  /// Runs what is due, and what that submits, without any time passing.
  void runMainQueue() { advance(0); }
  /// Lets time pass, running what falls due in order of time, then of submission.
  void advance(double seconds) {
    const double end = now_ + seconds;
    afterEvent_();  // What the test itself did counts as an event that ends here.
    while (!mainQueue_->empty() && mainQueue_->begin()->first.first <= end) {
      auto next = mainQueue_->extract(mainQueue_->begin());
      now_ = std::max(now_, next.key().first);
      handleEvent(next.mapped());
    }
    now_ = end;
  }
  /// Runs the background tasks in order of submission, and those that they detach.
  void runBackgroundTasks() {
    afterEvent_();
    onMainThread_ = false;
    while (!tasks_.empty()) {
      const auto work = std::move(tasks_.front().second);
      tasks_.pop_front();
      work();
    }
    onMainThread_ = true;
  }
  /// Runs the main queue and the background tasks until nothing is due.
  void settle() {
    do {
      runBackgroundTasks();
      runMainQueue();
    } while (!tasks_.empty());
  }
  /// Runs `handle` as an event of its own.
  void handleEvent(const std::function<void()>& handle) {
    handle();
    afterEvent_();
  }
  /// Drops everything that waits, which may submit more.
  void clear() {
    while (!mainQueue_->empty() || !tasks_.empty()) {
      std::exchange(*mainQueue_, {});
      std::exchange(tasks_, {});
    }
  }

  std::size_t backgroundTaskCount() const { return tasks_.size(); }
  platform::TaskPriority priorityOfNextTask() const { return tasks_.front().first; }

 private:
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
