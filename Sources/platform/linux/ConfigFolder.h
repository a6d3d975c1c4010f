#pragma once

#include <filesystem>

namespace lumiscan::desktop {

/// The folder of the user's configuration files, whether it exists or not: `$XDG_CONFIG_HOME`, or `~/.config`
/// where that isn't set to an absolute path. Any thread.
std::filesystem::path configFolder();

}  // namespace lumiscan::desktop
