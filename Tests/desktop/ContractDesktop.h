#pragma once

#include "desktop/LinuxFixture.h"

namespace lumiscan::testing {

/// The real desktop under the tests of what every desktop does alike.
using ContractDesktop = LinuxFixture;

}  // namespace lumiscan::testing
