#include "capture/CaptureMode.h"

namespace lumiscan {

std::string_view rawValue(CaptureMode mode) {
  switch (mode) {
    case CaptureMode::text:
      return "text";
    case CaptureMode::textToSpeech:
      return "textToSpeech";
    case CaptureMode::barcode:
      return "barcode";
  }
  return {};
}

std::optional<CaptureMode> captureMode(std::string_view raw) {
  for (const CaptureMode mode : {CaptureMode::text, CaptureMode::textToSpeech, CaptureMode::barcode})
    if (rawValue(mode) == raw) return mode;
  return std::nullopt;
}

}  // namespace lumiscan
