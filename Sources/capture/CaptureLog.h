#pragma once

#include "platform/Logger.h"

namespace lumiscan {

/// The log of capture sessions.
inline const platform::Logger& captureLog() {
  static const platform::Logger logger("capture");
  return logger;
}

}  // namespace lumiscan
