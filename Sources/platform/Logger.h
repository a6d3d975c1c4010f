#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace lumiscan::platform {

enum class LogLevel { info, error };

/// Where log lines go: the system log on a real desktop. Any thread. Lines hold no captured text.
class LogSink {
 public:
  virtual ~LogSink() = default;
  virtual void write(LogLevel level, std::string_view subsystem, std::string_view category,
                     std::string_view message) = 0;
};

/// Writes log lines of one category to the installed desktop's log; their subsystem is `applicationID`. Any
/// thread.
class Logger {
 public:
  explicit Logger(std::string category) : category_(std::move(category)) {}

  /// The normal course of things.
  void info(std::string_view message) const { write(LogLevel::info, message); }
  /// Denials and failures.
  void error(std::string_view message) const { write(LogLevel::error, message); }

 private:
  void write(LogLevel level, std::string_view message) const;

  std::string category_;
};

}  // namespace lumiscan::platform
