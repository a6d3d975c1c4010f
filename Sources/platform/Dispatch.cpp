#include "platform/Dispatch.h"

#include <cassert>
#include <utility>

#include "platform/Desktop.h"

namespace lumiscan::platform {

namespace MainQueue {

void async(std::function<void()> work) { Desktop::current().dispatcher().async(std::move(work)); }

void asyncAfter(double seconds, const std::shared_ptr<WorkItem>& item) {
  assertCurrent();
  item->setStopWaiting(Desktop::current().dispatcher().asyncAfter(seconds, [item] { item->perform(); }));
}

void assertCurrent() { assert(Desktop::current().dispatcher().isMainThread()); }

}  // namespace MainQueue

namespace Task {

void detached(TaskPriority priority, std::function<void()> work) {
  Desktop::current().dispatcher().detach(priority, std::move(work));
}

}  // namespace Task

std::unique_ptr<Timer> Timer::scheduledRepeating(double interval, std::function<void()> block) {
  std::unique_ptr<Timer> timer(new Timer(interval, std::move(block)));
  timer->scheduleNext();
  return timer;
}

Timer::Timer(double interval, std::function<void()> block) : interval_(interval), block_(std::move(block)) {}

Timer::~Timer() { invalidate(); }

void Timer::invalidate() {
  if (next_) next_->cancel();
  next_ = nullptr;
}

void Timer::scheduleNext() {
  next_ = std::make_shared<WorkItem>([this] {
    scheduleNext();
    const auto block = block_;  // The block may destroy this timer.
    block();
  });
  MainQueue::asyncAfter(interval_, next_);
}

}  // namespace lumiscan::platform
