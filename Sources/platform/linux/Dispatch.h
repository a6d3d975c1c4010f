#pragma once

#include <QObject>
#include <QThreadPool>
#include <chrono>
#include <thread>

#include "platform/Dispatch.h"

namespace lumiscan::desktop {

/// The main queue on Qt's event loop, and two small pools of background threads: recognitions may hold all of
/// one for seconds, while pictures are taken on the other. Made on the main thread; work
/// that is submitted before the event loop runs waits for it.
class QtDispatcher : public platform::Dispatcher {
 public:
  QtDispatcher();

  void async(std::function<void()> work) override;
  std::function<void()> asyncAfter(double seconds, std::function<void()> work) override;
  void detach(platform::TaskPriority priority, std::function<void()> work) override;
  bool isMainThread() const override;

  /// Once, before the first task: tasks then never need a thread that can't be started.
  void startTaskThreads();
  /// Tasks that haven't started never will.
  void dropWaitingTasks();
  /// Waits for the tasks; whether all ended within `patience`.
  bool waitForTasks(std::chrono::milliseconds patience);

 private:
  std::thread::id mainThread_ = std::this_thread::get_id();
  QObject mainContext_;
  QThreadPool pool_;
  QThreadPool interactivePool_;  // For tasks of that priority.
};

}  // namespace lumiscan::desktop
