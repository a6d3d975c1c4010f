#include "recognition/OCRService.h"

#include <unicode/uniset.h>

#include "platform/TextRecognizer.h"
#include "recognition/TextLines.h"

namespace lumiscan::OCRService {

namespace {

const icu::UnicodeSet& blanks() {
  static const icu::UnicodeSet set = [] {
    UErrorCode status = U_ZERO_ERROR;
    return icu::UnicodeSet(u"[[:Zs:]\\t]", status);
  }();
  return set;
}

std::string_view trimmed(std::string_view text) {
  const auto leading =
      blanks().spanUTF8(text.data(), static_cast<std::int32_t>(text.size()), USET_SPAN_SIMPLE);
  text.remove_prefix(static_cast<std::size_t>(leading));
  const auto kept =
      blanks().spanBackUTF8(text.data(), static_cast<std::int32_t>(text.size()), USET_SPAN_SIMPLE);
  return text.substr(0, static_cast<std::size_t>(kept));
}

}  // namespace

platform::Result<std::string> recognizeText(const platform::Image& image,
                                            const std::vector<std::string>& languages) {
  platform::TextRecognitionRequest request;
  request.recognitionLevel = platform::RecognitionLevel::accurate;
  request.usesLanguageCorrection = true;
  request.recognitionLanguages = languages;
  const auto observations = platform::TextRecognizer::shared().perform(request, image);
  if (!observations.ok()) return observations.error();

  std::string text;
  bool first = true;
  for (const platform::TextObservation& observation : observations.value()) {
    const auto best = observation.topCandidates(1);
    if (best.empty()) continue;
    if (!first) text += '\n';
    text += best.front();
    first = false;
  }
  return text;
}

std::string collapseLineBreaks(std::string_view text) {
  std::string joined;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = endOfLine(text, begin);
    const std::string_view line = trimmed(text.substr(begin, end - begin));
    if (!line.empty()) {
      if (!joined.empty()) joined += ' ';
      joined += line;
    }
    begin = end + 1;
  }
  return joined;
}

void prepare(const std::vector<std::string>& languages) {
  platform::TextRecognizer::shared().prepare(languages);
}

}  // namespace lumiscan::OCRService
