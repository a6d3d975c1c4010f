#pragma once

#include <string>

namespace lumiscan::platform {

/// A message to the user in a window with one button. A plain value; the texts are plain, too.
struct Alert {
  std::string messageText;
  std::string informativeText;

  /// Shows the message on the installed desktop and returns when the user has dismissed it; events, and with
  /// them everything else that the program does, go on meanwhile. Does not bring the program to the front. A
  /// message that shows already is raised instead. Main thread only.
  void runModal() const;
};

/// The desktop's way to show alerts. Main thread only.
class Alerts {
 public:
  virtual ~Alerts() = default;
  /// As `Alert::runModal` says.
  virtual void runModal(const Alert& alert) = 0;
};

}  // namespace lumiscan::platform
