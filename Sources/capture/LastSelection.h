#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Geometry.h"
#include "platform/Screen.h"

namespace lumiscan {

/// Where a captured rectangle lay, in a form that outlives changes of the display's resolution and scale.
struct LastSelection {
  platform::DisplayID displayID = 0;
  /// Fractions of the display's width and height: origin at the display's top left, y downwards. Between 0
  /// and 1 for what lies on the display.
  platform::Rect rect;
  friend bool operator==(const LastSelection&, const LastSelection&) = default;
};

/// The stored form: a JSON object of the display's number and the rectangle as [[x, y], [width, height]].
/// Nothing when a fraction isn't a finite number.
std::optional<std::string> encoded(const LastSelection& selection);
/// Reads the stored form, in whichever order its members come and whatever other members there are; nothing
/// for any other text.
std::optional<LastSelection> decodedLastSelection(std::string_view json);

}  // namespace lumiscan
