#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "ContractDesktop.h"
#include "platform/Desktop.h"
#include "platform/Dispatch.h"
#include "platform/NotificationCenter.h"

namespace lumiscan::testing {
namespace {

using platform::MainQueue::async;
using platform::MainQueue::asyncAfter;

struct DispatchContract : ::testing::Test {
  static bool onMainThread() { return platform::Desktop::current().dispatcher().isMainThread(); }

  ContractDesktop desktop;
};

TEST_F(DispatchContract, MainQueueRunsAfterTheCurrentEventInOrderOfTimeThenOfSubmissionUnlessCancelled) {
  std::vector<int> ran;
  const auto item = [&ran](int number) {
    return std::make_shared<platform::WorkItem>([&ran, number] { ran.push_back(number); });
  };
  const auto cancelled = item(0);
  asyncAfter(0.04, item(5));
  asyncAfter(0.01, cancelled);
  asyncAfter(0.02, item(4));
  asyncAfter(3600, item(6));
  async([&] {
    async([&] { ran.push_back(3); });
    ran.push_back(1);
  });
  async([&] { ran.push_back(2); });
  cancelled->cancel();
  EXPECT_TRUE(ran.empty());
  desktop.processEvents();
  EXPECT_GE(ran.size(), 3U) << "all that is due";
  // Nothing waits for it, which would wake the process up.
  EXPECT_EQ(cancelled.use_count(), 1);
  desktop.passTime(0.08);
  EXPECT_EQ(ran, (std::vector{1, 2, 3, 4, 5}));
}

TEST_F(DispatchContract, BackgroundTasksRunOffTheMainThreadAndReturnToIt) {
  EXPECT_TRUE(onMainThread());
  std::vector<bool> wasOnMainThread;
  platform::Task::detached(platform::TaskPriority::userInitiated, [&] {
    const bool inTask = onMainThread();
    async([&, inTask] { wasOnMainThread = {inTask, onMainThread()}; });
  });
  desktop.waitForBackgroundTasks();
  EXPECT_EQ(wasOnMainThread, (std::vector{false, true}));
}

TEST_F(DispatchContract, TimersRepeatUntilInvalidatedEvenByThemselves) {
  int firings = 0;
  bool ended = false;
  std::unique_ptr<platform::Timer> timer = platform::Timer::scheduledRepeating(0.01, [&] {
    if (++firings < 3) return;
    timer = nullptr;
    ended = true;
  });
  int invalidatedFirings = 0;
  const auto invalidated = platform::Timer::scheduledRepeating(0.01, [&] { ++invalidatedFirings; });
  desktop.processEvents();
  EXPECT_EQ(firings, 0);
  invalidated->invalidate();
  desktop.passTime(0.2);
  EXPECT_EQ(firings, 3);
  EXPECT_TRUE(ended);
  EXPECT_EQ(invalidatedFirings, 0);
}

TEST_F(DispatchContract, NotificationsReachObserversInOrderBeforePostReturns) {
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

}  // namespace
}  // namespace lumiscan::testing
