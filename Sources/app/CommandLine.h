#pragma once

#include <string>
#include <vector>

namespace lumiscan {

/// What the process does, told by its command line alone.
enum class LaunchMode { selfTest, permissionProbe, interactive };

/// `arguments` is the whole command line, the program's path included. A flag counts wherever it stands,
/// and only as a whole argument; the self-test goes before the probe.
LaunchMode launchMode(const std::vector<std::string>& arguments);

/// Prints whether the screen may be captured; the exit status, 0 when it may and 1 when not. Never prompts.
int runPermissionProbe();

}  // namespace lumiscan
