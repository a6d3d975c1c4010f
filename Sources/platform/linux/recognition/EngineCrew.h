#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// The engines that read an image, of several languages maybe, and the threads that use them: the caller's
/// and, where there is enough to do, one more.
class EngineCrew {
 public:
  /// Another engine like that of the index, or nothing where there can't be one. Called from any thread.
  using Reinforce = std::function<std::shared_ptr<Engine>(std::size_t engine)>;

  EngineCrew(std::vector<std::shared_ptr<Engine>> engines, Reinforce reinforce);

  struct Task {
    std::size_t engine;                ///< The index of the one to use.
    std::size_t effort;                ///< About the number of letters to read.
    std::function<void(Engine&)> run;  ///< On any thread, as others run.
  };

  /// Returns when all tasks are done. What a task throws is thrown on when those begun are.
  void run(std::vector<Task> tasks);

 private:
  class Shift;

  std::vector<std::vector<std::shared_ptr<Engine>>> engines_;  // By index; those not in use.
  Reinforce reinforce_;
};

}  // namespace lumiscan::desktop
