#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan {

/// From a picture to its text. Any thread; keeps no state and reads no settings.
namespace OCRService {

/// The recognised lines, joined by single line feeds, in the recogniser's order; the empty string when
/// there are none. Blocks until done. `languages` are BCP 47 tags in order of preference; empty leaves the
/// recogniser's default. Fails with the recogniser's error, unchanged.
platform::Result<std::string> recognizeText(const platform::Image& image,
                                            const std::vector<std::string>& languages);

/// All lines of `text` (UTF-8) in one, joined by single spaces: each trimmed of spaces and tabs, blank ones
/// dropped. A line feed directly after a carriage return doesn't end a line.
std::string collapseLineBreaks(std::string_view text);

/// Lets the recogniser load what `languages` need while the user is still selecting. Returns at once.
void prepare(const std::vector<std::string>& languages);

}  // namespace OCRService
}  // namespace lumiscan
