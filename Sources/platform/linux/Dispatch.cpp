#include "platform/linux/Dispatch.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>

#include "platform/linux/StandingThreads.h"

namespace lumiscan::desktop {

QtDispatcher::QtDispatcher() {
  // Two at least, so that a short task never waits for a long recognition.
  pool_.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
}

void QtDispatcher::startTaskThreads() { startAllThreads(pool_); }

void QtDispatcher::async(std::function<void()> work) {
  QMetaObject::invokeMethod(&mainContext_, std::move(work), Qt::QueuedConnection);
}

void QtDispatcher::asyncAfter(double seconds, std::function<void()> work) {
  if (!isMainThread()) {
    async([this, seconds, work = std::move(work)] { asyncAfter(seconds, work); });
    return;
  }
  const auto delay = std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
  // Any other type may fire too early.
  QTimer::singleShot(delay, Qt::PreciseTimer, &mainContext_, std::move(work));
}

void QtDispatcher::detach(platform::TaskPriority priority, std::function<void()> work) {
  pool_.start(std::move(work), priority == platform::TaskPriority::userInitiated ? 1 : 0);
}

bool QtDispatcher::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

bool QtDispatcher::waitForTasks(std::chrono::milliseconds patience) {
  return pool_.waitForDone(static_cast<int>(patience.count()));
}

}  // namespace lumiscan::desktop
