#pragma once

#include <string>
#include <vector>

#include "platform/linux/recognition/Engine.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The lines of text in an image, in reading order, as UTF-8. `ink` is the image as `inkOf` gives it.
std::vector<std::string> readLines(Engine& engine, const GreyBitmap& ink);

}  // namespace lumiscan::desktop
