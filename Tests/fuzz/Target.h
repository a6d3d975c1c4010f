#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace lumiscan::fuzzing {

/// What the target does with one input.
void use(std::string_view input);

/// Ends the fuzz target, which keeps the input, unless what must hold does.
inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace lumiscan::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lumiscan::fuzzing::use({reinterpret_cast<const char*>(data), size});
  return 0;
}
