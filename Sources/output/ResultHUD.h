#pragma once

#include <optional>
#include <string>

namespace lumiscan {

/// Shows the user short messages that go away by themselves. Main thread only.
class ResultHUD {
 public:
  virtual ~ResultHUD() = default;

  /// Replaces the message that shows, if any. `preview` is a second line; `icon` names a symbol, and
  /// `duration` is in seconds: absent, each is what suits a success or an error.
  virtual void show(const std::string& title, const std::optional<std::string>& preview, bool isError,
                    const std::optional<std::string>& icon, std::optional<double> duration) = 0;
};

}  // namespace lumiscan
