// The real desktop keeps the contract that the program relies on.

#include "contract/DispatchContract.h"
#include "contract/InputOutputContract.h"
#include "contract/UserDefaultsContract.h"
#include "desktop/LinuxFixture.h"

namespace lumiscan::testing {

INSTANTIATE_TYPED_TEST_SUITE_P(Linux, UserDefaultsContract, LinuxFixture);
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, DispatchContract, LinuxFixture);
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, InputOutputContract, LinuxFixture);

}  // namespace lumiscan::testing
