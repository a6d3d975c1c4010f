// Arbitrary bytes as a captured text: its lines joined, and its title in the history menu.

#include <cstddef>
#include <cstdint>

#include "app/HistoryTitle.h"
#include "fuzz/Target.h"
#include "recognition/OCRService.h"
#include "recognition/TextLines.h"

namespace lumiscan::fuzzing {
namespace {

void joinLines(std::string_view text) {
  const std::string joined = OCRService::collapseLineBreaks(text);
  require(joined.size() <= text.size());
  require(endOfLine(joined, 0) == joined.size());
  require(OCRService::collapseLineBreaks(joined) == joined);
}

void makeTitle(std::string_view text, CaptureMode mode) {
  const std::string title = historyTitle({{}, {0}, mode, std::string(text)});
  const std::string_view before = mode == CaptureMode::barcode ? "hh:mm  [code] " : "hh:mm  ";
  require(title.size() >= before.size());
  // The start of some line, never more nor other than it holds.
  require(text.find(std::string_view(title).substr(before.size())) != std::string_view::npos);
}

}  // namespace

void use(std::string_view input) {
  joinLines(input);
  makeTitle(input, CaptureMode::text);
  makeTitle(input, CaptureMode::barcode);
}

}  // namespace lumiscan::fuzzing
