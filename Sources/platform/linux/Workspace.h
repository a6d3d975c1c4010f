#pragma once

#include "platform/Workspace.h"

namespace lumiscan::desktop {

/// Opens URLs with the desktop's own choice of programs, and the settings page for screen recording as the
/// privacy page of the desktop's settings program, where there is one that has it.
class XdgWorkspace : public platform::Workspace {
 public:
  void openURL(std::string_view url) override;
};

}  // namespace lumiscan::desktop
