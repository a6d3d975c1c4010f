#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Screen.h"

namespace lumiscan::desktop::x11 {

/// A monitor as the X server and the toolkit describe it.
struct Monitor {
  std::string name;       ///< The output's name, for example "HDMI-1".
  platform::Rect pixels;  ///< On the X screen: pixels, origin at its top left, y downwards.
  bool isPrimary = false;
  double scale = 1;  ///< Pixels per point.
  /// The part of `pixels` that panels and docks leave free; all of it when nothing is known.
  std::optional<platform::Rect> workArea;
};

/// Where in the pixel at which it points the mouse is, in pixels, rightwards and downwards: such that a line
/// of one point's width along there is sharp on a whole scale, and that it is on the screen which shows the
/// pixel.
platform::Point mouseInPixel(double scale);

/// The one place where the X server's pixels become the program's points and back.
///
/// A monitor's size in points is its size in pixels divided by its scale. Its origin in the global display
/// space is its distance from the primary monitor in pixels: dividing the distance too would make monitors
/// of different scales overlap, while this leaves at most a gap, and is what the toolkit does. Values only;
/// any thread.
class ScreenLayout {
 public:
  /// Without a primary monitor the first one counts as it. Of monitors that show the same only the first
  /// counts.
  explicit ScreenLayout(std::vector<Monitor> monitors);

  /// All screens, the primary one first.
  std::vector<platform::Screen> screens() const;
  /// 0 when there is no monitor.
  platform::DisplayID mainDisplayID() const;
  /// Global display space (points, origin at the primary monitor's top left, y downwards).
  platform::Rect bounds(platform::DisplayID display) const;
  /// The monitor's pixels on the X screen; nothing for a display that isn't attached.
  std::optional<platform::Rect> pixels(platform::DisplayID display) const;

  /// Where a mouse that points at a pixel of the X screen is in the global screen space (points, y upwards);
  /// see `mouseInPixel`. A pixel on no monitor is measured from the nearest one.
  platform::Point mouseLocation(platform::Point pixel) const;

  /// A rectangle of the global screen space on the display that shows its middle.
  struct Place {
    platform::DisplayID display = 0;
    platform::Rect
        pixels;  ///< On the X screen, rounded to whole pixels; the display's own where it covers it.
    double scale = 1;
    bool coversDisplay = false;
    friend bool operator==(const Place&, const Place&) = default;
  };
  /// Nothing for a rectangle whose middle is on no display.
  std::optional<Place> place(const platform::Rect& globalRect) const;

  /// The number of the output of that name: the same at every start, since it is made from the name alone.
  static platform::DisplayID displayID(const std::string& outputName);

 private:
  const Monitor* find(platform::DisplayID display) const;
  platform::Rect boundsOf(const Monitor& monitor) const;
  /// From the global display space to the global screen space: both in points, y turned round.
  platform::Rect upwards(const platform::Rect& rect) const;

  std::vector<Monitor> monitors_;
};

}  // namespace lumiscan::desktop::x11
