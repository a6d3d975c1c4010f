#include "app/AppDelegate.h"

namespace lumiscan {

void AppDelegate::openSettings() {}

}  // namespace lumiscan
