#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/linux/recognition/TextRecognizer.h"

namespace lumiscan::desktop {

/// The lines that a recogniser, or a new one, reads; a line "error: ..." where it fails.
inline std::vector<std::string> linesOf(TesseractRecognizer& recognizer, const platform::Image& image,
                                        std::vector<std::string> languages = {"en-US"}) {
  const auto result =
      recognizer.perform({platform::RecognitionLevel::accurate, true, std::move(languages)}, image);
  if (!result.ok()) return {"error: " + result.error().text};
  std::vector<std::string> lines;
  for (const auto& observation : result.value())
    for (const std::string& candidate : observation.candidates) lines.push_back(candidate);
  return lines;
}
inline std::vector<std::string> linesOf(const platform::Image& image,
                                        std::vector<std::string> languages = {"en-US"}) {
  TesseractRecognizer recognizer;
  return linesOf(recognizer, image, std::move(languages));
}

/// A text of some lines.
inline const std::vector<std::string> paragraph{
    "The quick brown fox jumps over", "the lazy dog while 24 hens", "watch from their wooden fence."};

}  // namespace lumiscan::desktop
