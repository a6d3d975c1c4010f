#pragma once

/// What the program does about the permission to record the screen, beyond asking whether it has it
/// (`platform::Displays`).
namespace lumiscan::ScreenCapturePermissions {

/// Opens the page of the system settings on which the user grants the permission, where there is one. Main
/// thread only.
void openSystemSettings();

}  // namespace lumiscan::ScreenCapturePermissions
