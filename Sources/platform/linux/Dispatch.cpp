#include "platform/linux/Dispatch.h"

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cassert>

#include "platform/linux/StandingThreads.h"

namespace lumiscan::desktop {

QtDispatcher::QtDispatcher() {
  // Two at least, so that two captures are recognised at once.
  pool_.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
  interactivePool_.setMaxThreadCount(2);
}

void QtDispatcher::startTaskThreads() {
  startAllThreads(interactivePool_);
  startAllThreads(pool_);
}

void QtDispatcher::dropWaitingTasks() {
  interactivePool_.clear();
  pool_.clear();
}

void QtDispatcher::async(std::function<void()> work) {
  QMetaObject::invokeMethod(&mainContext_, std::move(work), Qt::QueuedConnection);
}

std::function<void()> QtDispatcher::asyncAfter(double seconds, std::function<void()> work) {
  assert(isMainThread());
  auto* const timer = new QTimer(&mainContext_);
  timer->setSingleShot(true);
  // Any other type may fire too early.
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, work = std::move(work)] {
    timer->deleteLater();
    work();
  });
  timer->start(std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds)));
  // A timer that isn't active has done its work, or is about it and calls this.
  return [timer = QPointer(timer)] {
    if (timer && timer->isActive()) delete timer.data();
  };
}

void QtDispatcher::detach(platform::TaskPriority priority, std::function<void()> work) {
  if (priority == platform::TaskPriority::userInteractive)
    interactivePool_.start(std::move(work));
  else
    pool_.start(std::move(work), priority == platform::TaskPriority::userInitiated ? 1 : 0);
}

bool QtDispatcher::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

bool QtDispatcher::waitForTasks(std::chrono::milliseconds patience) {
  const QDeadlineTimer deadline(patience);
  return interactivePool_.waitForDone(static_cast<int>(deadline.remainingTime())) &&
         pool_.waitForDone(static_cast<int>(deadline.remainingTime()));
}

}  // namespace lumiscan::desktop
