#include "platform/linux/Worker.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace lumiscan::desktop {

namespace {

using Clock = std::chrono::steady_clock;

/// How long the end waits for works that were posted.
constexpr std::chrono::milliseconds endPatience(200);

constexpr int mostLeftBehind = 4;
std::atomic<int> leftBehind = 0;

}  // namespace

struct Worker::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::function<void()>> works;
  std::optional<Clock::time_point> runningSince;
  bool ending = false;
  bool ended = false;
  bool isLeftBehind = false;
};

Worker::Worker() : state_(std::make_shared<State>()) {
  // Signals are the main thread's, and a broken connection, which raises one, no reason to end the program.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread(run, state_).detach();
  } catch (const std::system_error&) {
    // Like one that hangs since the machine started: the next use makes another worker.
    state_->runningSince = Clock::time_point();
    state_->ended = true;
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Worker::~Worker() {
  std::unique_lock lock(state_->mutex);
  state_->ending = true;
  state_->changed.notify_all();
  const bool hangs = state_->runningSince && Clock::now() - *state_->runningSince > endPatience;
  if (!hangs && state_->changed.wait_for(lock, endPatience, [this] { return state_->ended; })) return;
  state_->works.clear();
  state_->isLeftBehind = !state_->ended;
  if (state_->isLeftBehind) ++leftBehind;
}

bool Worker::mayBeReplaced() { return leftBehind < mostLeftBehind; }

void Worker::post(std::function<void()> work) {
  const std::lock_guard lock(state_->mutex);
  state_->works.push_back(std::move(work));
  state_->changed.notify_all();
}

bool Worker::hangs(std::chrono::milliseconds patience) const {
  const std::lock_guard lock(state_->mutex);
  return state_->runningSince && Clock::now() - *state_->runningSince > patience;
}

void Worker::run(const std::shared_ptr<State>& state) {
  std::unique_lock lock(state->mutex);
  while (true) {
    state->changed.wait(lock, [&state] { return state->ending || !state->works.empty(); });
    if (state->works.empty()) break;
    auto work = std::move(state->works.front());
    state->works.pop_front();
    state->runningSince = Clock::now();
    lock.unlock();
    work();
    work = nullptr;
    lock.lock();
    state->runningSince.reset();
  }
  state->ended = true;
  if (state->isLeftBehind) --leftBehind;
  state->changed.notify_all();
}

}  // namespace lumiscan::desktop
