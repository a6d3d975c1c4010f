#pragma once

#include <memory>
#include <vector>

#include "contract/DesktopFixture.h"
#include "platform/Desktop.h"
#include "platform/Dispatch.h"
#include "platform/NotificationCenter.h"

namespace lumiscan::testing {

template <typename Fixture>
class DispatchContract : public ContractTest<Fixture> {
 protected:
  static bool onMainThread() { return platform::Desktop::current().dispatcher().isMainThread(); }
};
TYPED_TEST_SUITE_P(DispatchContract);

TYPED_TEST_P(DispatchContract, MainQueueRunsInOrderOfSubmissionAfterTheCurrentEvent) {
  std::vector<int> ran;
  platform::MainQueue::async([&] {
    platform::MainQueue::async([&] { ran.push_back(3); });
    ran.push_back(1);
  });
  platform::MainQueue::async([&] { ran.push_back(2); });
  EXPECT_TRUE(ran.empty());
  this->desktop.processEvents();
  EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TYPED_TEST_P(DispatchContract, BackgroundTasksRunOffTheMainThreadAndReturnToIt) {
  EXPECT_TRUE(this->onMainThread());
  std::vector<bool> onMainThread;
  platform::Task::detached(platform::TaskPriority::userInitiated, [&] {
    const bool inTask = this->onMainThread();
    platform::MainQueue::async([&, inTask] { onMainThread = {inTask, this->onMainThread()}; });
  });
  this->desktop.waitForBackgroundTasks();
  EXPECT_EQ(onMainThread, (std::vector{false, true}));
}

TYPED_TEST_P(DispatchContract, DelayedWorkRunsInOrderOfTimeUnlessCancelled) {
  std::vector<int> ran;
  const auto item = [&ran](int number) {
    return std::make_shared<platform::WorkItem>([&ran, number] { ran.push_back(number); });
  };
  const auto cancelled = item(1);
  platform::MainQueue::asyncAfter(0.04, item(4));
  platform::MainQueue::asyncAfter(0.01, cancelled);
  platform::MainQueue::asyncAfter(0.02, item(3));
  platform::MainQueue::asyncAfter(3600, item(5));
  platform::MainQueue::async([&] { ran.push_back(2); });
  cancelled->cancel();
  this->desktop.processEvents();
  // Nothing waits for it, which would wake the process up.
  EXPECT_EQ(cancelled.use_count(), 1);
  this->desktop.passTime(0.08);
  EXPECT_EQ(ran, (std::vector{2, 3, 4}));
}

TYPED_TEST_P(DispatchContract, TimersRepeatUntilInvalidatedEvenByThemselves) {
  int firings = 0;
  bool ended = false;
  std::unique_ptr<platform::Timer> timer = platform::Timer::scheduledRepeating(0.01, [&] {
    if (++firings < 3) return;
    timer = nullptr;
    ended = true;
  });
  int invalidatedFirings = 0;
  const auto invalidated = platform::Timer::scheduledRepeating(0.01, [&] { ++invalidatedFirings; });
  this->desktop.processEvents();
  EXPECT_EQ(firings, 0);
  invalidated->invalidate();
  this->desktop.passTime(0.2);
  EXPECT_EQ(firings, 3);
  EXPECT_TRUE(ended);
  EXPECT_EQ(invalidatedFirings, 0);
}

TYPED_TEST_P(DispatchContract, NotificationsReachObserversInOrderBeforePostReturns) {
  auto& center = platform::NotificationCenter::defaultCenter();
  std::vector<int> told;
  std::vector<std::shared_ptr<platform::NotificationCenter::Observation>> observations;
  const auto observe = [&](platform::NotificationCenter& in, const char* name, int number) {
    observations.push_back(in.addObserver(name, [&told, number] { told.push_back(number); }));
  };
  observations.push_back(center.addObserver("changed", [&] {
    told.push_back(1);
    observations[2] = nullptr;
    observe(center, "changed", 6);
  }));
  observe(center, "changed", 2);
  observe(center, "changed", 3);
  observe(center, "other", 4);
  observe(platform::NotificationCenter::workspaceCenter(), "changed", 5);
  center.post("changed");
  EXPECT_EQ(told, (std::vector{1, 2}));
}

REGISTER_TYPED_TEST_SUITE_P(DispatchContract, MainQueueRunsInOrderOfSubmissionAfterTheCurrentEvent,
                            BackgroundTasksRunOffTheMainThreadAndReturnToIt,
                            DelayedWorkRunsInOrderOfTimeUnlessCancelled,
                            TimersRepeatUntilInvalidatedEvenByThemselves,
                            NotificationsReachObserversInOrderBeforePostReturns);

}  // namespace lumiscan::testing
