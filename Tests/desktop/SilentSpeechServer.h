#pragma once

#include "desktop/PrivateDesktop.h"

namespace lumiscan::testing {

/// A speech server without a voice, on a private desktop: this process's environment points at it.
class SilentSpeechServer {
 public:
  explicit SilentSpeechServer(const PrivateDesktop& desktop);

 private:
  std::unique_ptr<Process> server_;
};

}  // namespace lumiscan::testing
