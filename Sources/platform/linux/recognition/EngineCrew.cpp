#include "platform/linux/recognition/EngineCrew.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace lumiscan::desktop {

namespace {
/// Letters that are read in about the time that starting a thread and loading an engine takes.
constexpr std::size_t worthwhile = 150;
}  // namespace

/// One run of tasks.
class EngineCrew::Shift {
 public:
  Shift(EngineCrew& crew, std::vector<Task> tasks)
      : crew_(crew), tasks_(std::move(tasks)), left_(tasks_.size()) {}

  void run() {
    std::thread helper;
    try {
      if (tasks_.size() > 1 && effortLeft() >= 2 * worthwhile) helper = std::thread([this] { work(true); });
    } catch (const std::system_error&) {
      // The caller's thread does without.
    }
    work(false);
    if (helper.joinable()) helper.join();
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  std::size_t effortLeft() const {
    std::size_t effort = 0;
    for (const Task& task : tasks_)
      if (task.run) effort += task.effort;
    return effort;
  }

  /// Does tasks until there are none. `mayReinforce` says whether to get engines where all needed are in use.
  void work(bool mayReinforce) {
    std::unique_lock lock(mutex_);
    while (left_ > 0 && !failure_) {
      if (const auto next = nextTask()) {
        doTask(*next, lock);
      } else if (const auto waiting = firstWaiting(); mayReinforce && waiting && effortLeft() >= worthwhile) {
        mayReinforce = false;
        reinforce(tasks_[*waiting].engine, lock);
      } else {
        changed_.wait(lock);  // For an engine, or the end of the last task.
      }
    }
  }

  std::optional<std::size_t> firstWaiting() const {
    for (std::size_t i = 0; i < tasks_.size(); ++i)
      if (tasks_[i].run) return i;
    return std::nullopt;
  }

  /// The first task whose engine is free.
  std::optional<std::size_t> nextTask() const {
    for (std::size_t i = 0; i < tasks_.size(); ++i)
      if (tasks_[i].run && !crew_.engines_[tasks_[i].engine].empty()) return i;
    return std::nullopt;
  }

  void doTask(std::size_t index, std::unique_lock<std::mutex>& lock) {
    Task task = std::exchange(tasks_[index], {});
    auto& free = crew_.engines_[task.engine];
    const std::shared_ptr<Engine> engine = std::move(free.back());
    free.pop_back();
    lock.unlock();
    std::exception_ptr failure;
    try {
      task.run(*engine);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    free.push_back(engine);
    --left_;
    if (failure && !failure_) failure_ = failure;
    changed_.notify_all();
  }

  void reinforce(std::size_t engine, std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    std::shared_ptr<Engine> more;
    try {
      more = crew_.reinforce_(engine);
    } catch (const std::exception&) {
      // The engine that there is does without, as where memory is short.
    }
    lock.lock();
    if (more) crew_.engines_[engine].push_back(std::move(more));
  }

  EngineCrew& crew_;
  std::vector<Task> tasks_;  // Those done or begun have no function.
  std::size_t left_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::exception_ptr failure_;
};

EngineCrew::EngineCrew(std::vector<std::shared_ptr<Engine>> engines, Reinforce reinforce)
    : reinforce_(std::move(reinforce)) {
  for (std::shared_ptr<Engine>& engine : engines) engines_.push_back({std::move(engine)});
}

void EngineCrew::run(std::vector<Task> tasks) { Shift(*this, std::move(tasks)).run(); }

}  // namespace lumiscan::desktop
