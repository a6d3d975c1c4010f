#include "platform/linux/StandingThreads.h"

#include <latch>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace lumiscan::desktop {

bool threadsCanStart(int count) {
  std::latch counted(1);
  std::vector<std::thread> threads;
  bool all = true;
  try {
    for (int i = 0; i < count; ++i) threads.emplace_back([&counted] { counted.wait(); });
  } catch (const std::system_error&) {
    all = false;
  }
  counted.count_down();
  for (std::thread& thread : threads) thread.join();
  return all;
}

void startAllThreads(QThreadPool& pool) {
  pool.setExpiryTimeout(-1);
  // Each holds its thread, so that the next one gets another.
  const auto started = std::make_shared<std::latch>(1);
  for (int i = 0; i < pool.maxThreadCount(); ++i) pool.start([started] { started->wait(); });
  started->count_down();
}

}  // namespace lumiscan::desktop
