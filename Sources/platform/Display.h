#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/Screen.h"

namespace lumiscan::platform {

/// The attached displays and pictures of what they show. Every operation may be called from any thread.
///
/// Two coordinate spaces meet here, both in points. The global screen space (`Screen::frame`, mouse
/// positions, windows) has its origin at the bottom left of the primary screen and y upwards. The global
/// display space (`bounds`) has its origin at the top left of the main display and y downwards.
class Displays {
 public:
  virtual ~Displays() = default;

  /// Those of the installed desktop.
  static Displays& shared();

  /// Every attached screen, the primary one first. Empty when there is none.
  virtual std::vector<Screen> screens() const = 0;

  /// The primary screen's display; 0 when there is none.
  virtual DisplayID mainDisplayID() const = 0;

  /// The display's rectangle in the global display space; all 0 for a display that is not attached.
  virtual Rect bounds(DisplayID display) const = 0;

  /// A picture of the whole display, in pixels: the desktop without any window of ours and without the
  /// cursor. Nothing when it can't be taken.
  virtual std::optional<Image> createImage(DisplayID display) = 0;

  /// Whether pictures of the screen may be taken. Never prompts, never waits on the user, caches nothing.
  virtual bool preflightScreenCaptureAccess() = 0;

  /// Asks the desktop to let the program take pictures; the desktop may prompt the user.
  virtual void requestScreenCaptureAccess() = 0;
};

}  // namespace lumiscan::platform
