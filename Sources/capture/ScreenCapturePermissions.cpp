#include "capture/ScreenCapturePermissions.h"

#include "platform/Workspace.h"

namespace lumiscan::ScreenCapturePermissions {

void openSystemSettings() { platform::Workspace::shared().openURL(platform::screenRecordingSettingsURL); }

}  // namespace lumiscan::ScreenCapturePermissions
