#pragma once

#include <cstdlib>

namespace lumiscan::fuzzing {

/// Ends the fuzz target, which keeps the input, unless what must hold does.
inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace lumiscan::fuzzing
