#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan::platform {

enum class RecognitionLevel { accurate, fast };

/// What to recognise, and how.
struct TextRecognitionRequest {
  RecognitionLevel recognitionLevel = RecognitionLevel::accurate;
  bool usesLanguageCorrection = false;
  /// BCP 47 tags in order of preference; empty means the recogniser's default.
  std::vector<std::string> recognitionLanguages;
};

/// One recognised line with its readings, the best one first. A line whose every reading is blank is
/// never reported.
struct TextObservation {
  std::vector<std::string> candidates;

  /// At most the `count` best readings.
  std::vector<std::string> topCandidates(std::size_t count) const;
};

/// Reads text in images, on the device. Any thread; concurrent calls share nothing they could disturb.
class TextRecognizer {
 public:
  virtual ~TextRecognizer() = default;

  /// That of the installed desktop.
  static TextRecognizer& shared();

  /// The lines of the image in reading order; blocks until done. An image of any size is taken. Fails
  /// with a text when no requested language has data, the image is too large, or the engine can't start.
  virtual Result<std::vector<TextObservation>> perform(const TextRecognitionRequest& request,
                                                       const Image& image) = 0;

  /// Gets ready for `languages` in the background and returns at once, so that the next `perform` with
  /// them is fast. Never fails.
  virtual void prepare(const std::vector<std::string>& languages) = 0;

  /// The package that brings the data of a language, a BCP 47 tag, which isn't installed; nothing when it
  /// is, or when no package has it. Looks anew at each call.
  virtual std::optional<std::string> missingPackage(std::string_view language) const = 0;
};

}  // namespace lumiscan::platform
