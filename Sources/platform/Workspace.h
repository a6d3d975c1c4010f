#pragma once

#include <string_view>

namespace lumiscan::platform {

/// What the desktop does with things that belong to other programs. Main thread only.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// That of the installed desktop.
  static Workspace& shared();

  /// Opens a URL with the program that handles its scheme and doesn't wait for it. Whether that succeeds is
  /// nobody's concern: a URL that no program handles, or that isn't one, opens nothing.
  virtual void openURL(std::string_view url) = 0;
};

/// The page of the system settings on which the user lets programs record the screen.
inline constexpr std::string_view screenRecordingSettingsURL =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";

}  // namespace lumiscan::platform
