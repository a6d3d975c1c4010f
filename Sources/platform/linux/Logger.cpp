#include "platform/linux/Logger.h"

#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <string>

namespace lumiscan::desktop {

namespace {

bool journalListens() { return access("/run/systemd/journal/socket", W_OK) == 0; }

iovec field(const std::string& text) { return {const_cast<char*>(text.data()), text.size()}; }

}  // namespace

void JournalLog::write(platform::LogLevel level, std::string_view subsystem, std::string_view category,
                       std::string_view message) {
  const bool isError = level == platform::LogLevel::error;
  if (!journalListens()) {
    std::cerr.clear();  // A disk that was full must not silence it for good.
    // One write a line, so that lines of several threads don't mix.
    std::cerr << std::string(subsystem) + ":" + std::string(category) + (isError ? " error: " : " info: ") +
                     std::string(message) + "\n";
    return;
  }
  const std::string fields[] = {
      "MESSAGE=" + std::string(message),   std::string("PRIORITY=") + (isError ? "3" : "6"),
      "SYSLOG_IDENTIFIER=lumiscan",        "SUBSYSTEM=" + std::string(subsystem),
      "CATEGORY=" + std::string(category),
  };
  std::array<iovec, std::size(fields)> vectors;
  for (std::size_t i = 0; i < vectors.size(); ++i) vectors[i] = field(fields[i]);
  sd_journal_sendv(vectors.data(), static_cast<int>(vectors.size()));
}

}  // namespace lumiscan::desktop
