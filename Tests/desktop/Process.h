#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumiscan::testing {

/// Waits until `condition` holds, for ten seconds at the most; whether it came to hold. `meanwhile` runs
/// between two looks.
bool waitUntil(const std::function<bool()>& condition, const std::function<void()>& meanwhile = {});

/// A child process with this process's environment. It ends with this object, or with this process.
class Process {
 public:
  /// Starts a program that is found in PATH.
  explicit Process(std::vector<std::string> arguments);
  static std::unique_ptr<Process> start(std::vector<std::string> arguments) {
    return std::make_unique<Process>(std::move(arguments));
  }
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// The exit status; nothing while the process runs. A process that a signal ended has 128 and the signal.
  std::optional<int> exitStatus();
  /// Waits for the end, as `waitUntil` does; nothing if it doesn't come.
  std::optional<int> waitForEnd(const std::function<void()>& meanwhile = {});
  void signal(int number) const;
  pid_t id() const { return pid_; }

  /// What it has written so far.
  std::string standardOutput() const;
  std::string standardError() const;
  /// How often a text is in the standard error.
  long countInError(const std::string& text) const;

 private:
  pid_t pid_ = -1;
  int output_;
  int error_;
  std::optional<int> status_;
};

}  // namespace lumiscan::testing
