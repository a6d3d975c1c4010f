#include "platform/linux/ConfigFolder.h"

#include <cstdlib>

namespace lumiscan::desktop {

std::filesystem::path configFolder() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  const std::filesystem::path folder = configured ? configured : "";
  if (folder.is_absolute()) return folder;
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home ? home : "/") / ".config";
}

}  // namespace lumiscan::desktop
