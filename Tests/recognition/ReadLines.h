#pragma once

#include <string>
#include <vector>

#include "platform/linux/recognition/TextRecognizer.h"

namespace lumiscan::desktop {

/// The lines that a recogniser, or a new one, reads; a line "error: ..." where it fails.
std::vector<std::string> linesOf(TesseractRecognizer& recognizer, const platform::Image& image,
                                 std::vector<std::string> languages = {"en-US"});
std::vector<std::string> linesOf(const platform::Image& image,
                                 std::vector<std::string> languages = {"en-US"});

/// A text of some lines.
inline const std::vector<std::string> paragraph{
    "The quick brown fox jumps over", "the lazy dog while 24 hens", "watch from their wooden fence."};

}  // namespace lumiscan::desktop
