#include "support/SimulatedDispatcher.h"

#include <algorithm>

namespace lumiscan::testing {

void SimulatedDispatcher::async(std::function<void()> work) { asyncAfter(0, std::move(work)); }

std::function<void()> SimulatedDispatcher::asyncAfter(double seconds, std::function<void()> work) {
  const Queue::key_type key{now_ + std::max(seconds, 0.0), submissions_++};
  mainQueue_->emplace(key, std::move(work));
  return [key, weakQueue = std::weak_ptr(mainQueue_)] {
    const auto queue = weakQueue.lock();
    if (!queue) return;
    // Dropping a work may lead here again.
    queue->extract(key);
  };
}

void SimulatedDispatcher::detach(platform::TaskPriority priority, std::function<void()> work) {
  tasks_.emplace_back(priority, std::move(work));
}

void SimulatedDispatcher::runMainQueue() { runDueUntil(now_); }

void SimulatedDispatcher::advance(double seconds) {
  const double end = now_ + seconds;
  runDueUntil(end);
  now_ = end;
}

void SimulatedDispatcher::runDueUntil(double time) {
  afterEvent_();  // What the test itself did counts as an event that ends here.
  while (!mainQueue_->empty() && mainQueue_->begin()->first.first <= time) {
    auto next = mainQueue_->extract(mainQueue_->begin());
    now_ = std::max(now_, next.key().first);
    handleEvent(next.mapped());
  }
}

void SimulatedDispatcher::runBackgroundTasks() {
  afterEvent_();
  onMainThread_ = false;
  while (!tasks_.empty()) {
    const auto work = std::move(tasks_.front().second);
    tasks_.pop_front();
    work();
  }
  onMainThread_ = true;
}

void SimulatedDispatcher::settle() {
  do {
    runBackgroundTasks();
    runMainQueue();
  } while (!tasks_.empty());
}

void SimulatedDispatcher::handleEvent(const std::function<void()>& handle) {
  handle();
  afterEvent_();
}

void SimulatedDispatcher::clear() {
  // Dropping work may submit more.
  while (!mainQueue_->empty() || !tasks_.empty()) {
    std::exchange(*mainQueue_, {});
    std::exchange(tasks_, {});
  }
}

}  // namespace lumiscan::testing
