#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Dispatch.h"
#include "platform/Window.h"

namespace lumiscan {

/// Shows the user short messages, in a panel near the top of the screen with the mouse that goes away by
/// itself. Main thread only. Owned by a shared pointer, since its timers hold it weakly.
class ResultHUD : public std::enable_shared_from_this<ResultHUD> {
 public:
  ~ResultHUD();

  /// Replaces the message that shows, if any; does nothing at all while the `showHUD` setting is off.
  /// `preview` is a second line; `icon` names a symbol, and `duration` is in seconds: absent, each is what
  /// suits a success or an error.
  void show(const std::string& title, const std::optional<std::string>& preview = std::nullopt,
            bool isError = false, const std::optional<std::string>& icon = std::nullopt,
            std::optional<double> duration = std::nullopt);

 private:
  void fadeOut();
  void close();

  std::shared_ptr<platform::Window> panel_;
  std::shared_ptr<platform::WorkItem> hideWorkItem_;
};

}  // namespace lumiscan
