#pragma once

namespace lumiscan::testing {
class PrivateDesktop;
}

namespace lumiscan {

/// Paints a page of prose on the ground of the screen, from its top left on.
void showTextPage(testing::PrivateDesktop& desktop);

}  // namespace lumiscan
