// Background tasks on real threads. What any desktop's dispatcher does is in DispatchContract.

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "desktop/LinuxFixture.h"
#include "platform/Dispatch.h"

namespace lumiscan::testing {
namespace {

class DispatchTest : public ::testing::Test, protected LinuxFixture {};

TEST_F(DispatchTest, WhatCannotWaitRunsHoweverManyTasksTakeLong) {
  using platform::TaskPriority;
  std::promise<void> end;
  std::atomic<int> begun = 0;
  const std::shared_future<void> ended = end.get_future().share();
  for (int i = 0; i < 20; ++i)
    for (const TaskPriority priority : {TaskPriority::userInitiated, TaskPriority::utility})
      platform::Task::detached(priority, [&begun, ended] {
        ++begun;
        ended.wait();
      });
  EXPECT_TRUE(waitFor([&] { return begun >= 2; })) << "two recognitions at once";
  std::atomic<bool> ran = false;
  platform::Task::detached(TaskPriority::userInteractive, [&ran] { ran = true; });
  EXPECT_TRUE(waitFor([&] { return ran.load(); }));
  end.set_value();
  waitForBackgroundTasks();
  EXPECT_EQ(begun, 40);
}

}  // namespace
}  // namespace lumiscan::testing
