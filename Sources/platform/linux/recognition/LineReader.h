#pragma once

#include <string>
#include <vector>

#include "platform/linux/recognition/EngineCrew.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// The lines of text in an image, in reading order, as UTF-8. `languages` are those of the crew's engines, by
/// index: the names of their trained data. `ink` is the image as `inkOf` gives it.
std::vector<std::string> readLines(EngineCrew& crew, const std::vector<std::vector<std::string>>& languages,
                                   GreyBitmap ink);

}  // namespace lumiscan::desktop
