#pragma once

#include <cstdint>

namespace lumiscan {

/// Checks the recognition pipeline end to end without a screen or a user. Main thread.
namespace SelfTest {

/// Prints one line a check on standard output; 0 when every check passed, 1 otherwise.
std::int32_t run();

}  // namespace SelfTest
}  // namespace lumiscan
