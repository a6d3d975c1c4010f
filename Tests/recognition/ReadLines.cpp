#include "ReadLines.h"

#include <utility>

namespace lumiscan::desktop {

std::vector<std::string> linesOf(TesseractRecognizer& recognizer, const platform::Image& image,
                                 std::vector<std::string> languages) {
  const auto result =
      recognizer.perform({platform::RecognitionLevel::accurate, true, std::move(languages)}, image);
  if (!result.ok()) return {"error: " + result.error().text};
  std::vector<std::string> lines;
  for (const auto& observation : result.value())
    for (const std::string& candidate : observation.candidates) lines.push_back(candidate);
  return lines;
}

std::vector<std::string> linesOf(const platform::Image& image, std::vector<std::string> languages) {
  TesseractRecognizer recognizer;
  return linesOf(recognizer, image, std::move(languages));
}

}  // namespace lumiscan::desktop
