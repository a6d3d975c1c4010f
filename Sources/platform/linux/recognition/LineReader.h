#pragma once

#include <string>
#include <vector>

#include "platform/linux/recognition/EngineCrew.h"
#include "platform/linux/recognition/GreyBitmap.h"

namespace lumiscan::desktop {

/// What was read from an image.
struct Reading {
  std::vector<std::string> lines;  ///< UTF-8, in reading order.
  std::size_t symbols = 0;         ///< Read, also in what turned out to be no text,
  std::size_t likely = 0;          ///< so many of which look like what they were read as.
  double trust = 0;                ///< The confidence in all symbols of the lines, each from 0 to 100.

  double meanTrust() const { return symbols == 0 ? 0 : trust / static_cast<double>(symbols); }
  /// What it is worth beside other readings of the image: more for more text, less for doubtful symbols.
  double worth() const {
    constexpr double ofNoText = 60;
    return trust - ofNoText * static_cast<double>(symbols);
  }
};

/// The lines of text in an image, in reading order. `languages` are those of the crew's engines, by
/// index: the names of their trained data. `ink` is the image as `inkOf` gives it.
Reading readLines(EngineCrew& crew, const std::vector<std::vector<std::string>>& languages, GreyBitmap ink);

}  // namespace lumiscan::desktop
