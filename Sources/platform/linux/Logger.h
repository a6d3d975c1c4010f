#pragma once

#include "platform/Logger.h"

namespace lumiscan::desktop {

/// The system log: the journal, with the subsystem and the category as fields of their own; standard error
/// where no journal listens.
class JournalLog : public platform::LogSink {
 public:
  void write(platform::LogLevel level, std::string_view subsystem, std::string_view category,
             std::string_view message) override;
};

}  // namespace lumiscan::desktop
