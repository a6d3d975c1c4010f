#include "app/CommandLine.h"

#include <algorithm>
#include <iostream>
#include <string_view>

#include "platform/Display.h"

namespace lumiscan {

LaunchMode launchMode(const std::vector<std::string>& arguments) {
  const auto has = [&arguments](std::string_view flag) {
    return std::find(arguments.begin(), arguments.end(), flag) != arguments.end();
  };
  if (has("--selftest")) return LaunchMode::selfTest;
  if (has("--check-permission")) return LaunchMode::permissionProbe;
  return LaunchMode::interactive;
}

int runPermissionProbe() {
  const bool granted = platform::Displays::shared().preflightScreenCaptureAccess();
  std::cout << "Screen recording granted: " << (granted ? "true" : "false") << std::endl;
  return granted ? 0 : 1;
}

}  // namespace lumiscan
