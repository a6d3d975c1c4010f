#include "platform/linux/recognition/EnginePool.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <future>
#include <thread>

#include "platform/linux/recognition/EngineCrew.h"
#include "platform/linux/recognition/LanguageData.h"

namespace lumiscan::desktop {
namespace {

using platform::Error;
using platform::Result;

const EngineKey english{{"eng"}, true};

class EnginePoolTest : public testing::Test {
 protected:
  Result<std::shared_ptr<Engine>> load(const EngineKey& key) {
    ++loads_;
    if (gate_.valid()) gate_.wait();
    if (failing_) return Error{"no engine today"};
    return Engine::load(key, LanguageData().folder());
  }

  std::atomic<int> loads_ = 0;
  std::atomic<bool> failing_ = false;
  std::shared_future<void> gate_;
  EnginePool pool_{[this](const EngineKey& key) { return load(key); }};
};

TEST_F(EnginePoolTest, EachBorrowerHasAnEngineOfItsOwnAndIdleOnesAreKept) {
  {
    const auto first = pool_.borrow(english);
    const auto second = pool_.borrow(english);
    const auto third = pool_.borrow(english);
    ASSERT_TRUE(first.ok() && second.ok() && third.ok());
    EXPECT_NE(first.value().get(), second.value().get());
    EXPECT_EQ(pool_.idleCount(), 0U);
  }
  EXPECT_EQ(pool_.idleCount(), 2U) << "of three one is too many";
  EXPECT_TRUE(pool_.borrow(english).ok());
  EXPECT_EQ(loads_, 3);
  EXPECT_FALSE(pool_.announce(english)) << "one is there";

  EXPECT_EQ(pool_.releaseUnused(std::chrono::hours(1)), 0U);
  pool_.renew();
  EXPECT_EQ(loads_, 4);
  EXPECT_EQ(pool_.idleCount(), 1U);
  EXPECT_EQ(pool_.releaseUnused(std::chrono::seconds(0)), 1U);
  EXPECT_EQ(pool_.idleCount(), 0U);
}

TEST_F(EnginePoolTest, ABorrowerWaitsForTheEngineThatIsBeingLoaded) {
  std::promise<void> open;
  gate_ = open.get_future().share();
  ASSERT_TRUE(pool_.announce(english));
  EXPECT_FALSE(pool_.announce(english)) << "one is coming";
  std::thread loader([this] { pool_.loadAhead(english); });
  auto borrowed = std::async(std::launch::async, [this] { return pool_.borrow(english).ok(); });
  open.set_value();
  EXPECT_TRUE(borrowed.get());
  loader.join();
  EXPECT_EQ(loads_, 1);
}

TEST_F(EnginePoolTest, NobodyWaitsForALoadThatHasNotBegun) {
  ASSERT_TRUE(pool_.announce(english));
  // The load may never begin before the borrower is done: it may wait for the borrower's thread.
  auto first = pool_.borrow(english);
  EXPECT_TRUE(first.ok());
  pool_.loadAhead(english);
  EXPECT_EQ(loads_, 1) << "the borrower has loaded what was announced";
  EXPECT_TRUE(pool_.announce(english)) << "nothing is left of it";
}

TEST_F(EnginePoolTest, AFailureReachesTheBorrowerAndIsNotKept) {
  failing_ = true;
  ASSERT_TRUE(pool_.announce(english));
  pool_.loadAhead(english);
  const auto result = pool_.borrow(english);
  ASSERT_FALSE(result.ok());
  EXPECT_EQ(result.error().text, "no engine today");
  failing_ = false;
  EXPECT_TRUE(pool_.borrow(english).ok());
}

TEST(EngineCrew, WorksOnItsCallersThreadWhereNoOtherCanBeStarted) {
  pthread_attr_t before, hugeStacks;
  pthread_getattr_default_np(&before);
  pthread_getattr_default_np(&hugeStacks);
  pthread_attr_setstacksize(&hugeStacks, std::size_t{1} << 50);
  ASSERT_EQ(pthread_setattr_default_np(&hugeStacks), 0);
  int done = 0;
  EngineCrew crew({Engine::load(english, LanguageData().folder()).value()},
                  [](std::size_t) { return nullptr; });
  crew.run(std::vector(3, EngineCrew::Task{0, 1000, [&done](Engine&) { ++done; }}));
  pthread_setattr_default_np(&before);
  EXPECT_EQ(done, 3);
}

}  // namespace
}  // namespace lumiscan::desktop
