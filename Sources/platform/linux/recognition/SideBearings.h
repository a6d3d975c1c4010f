#pragma once

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// By how much the gap between two characters is wider than that of others in the same word, by their shapes:
/// a T leaves much room at its foot, an A none. In heights of an x; negative where it is narrower.
double roomOfShapes(const Symbol& left, const Symbol& right);

}  // namespace lumiscan::desktop
