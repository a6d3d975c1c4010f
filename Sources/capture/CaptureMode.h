#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <variant>

#include "platform/Image.h"

namespace lumiscan {

/// What a capture is for.
enum class CaptureMode {
  text,          ///< Recognise the text and copy it.
  textToSpeech,  ///< Recognise the text, copy it and read it aloud.
  barcode,       ///< Decode the QR codes and barcodes and copy their payloads.
};

/// The mode's stored form.
std::string_view rawValue(CaptureMode mode);
/// The mode of that stored form, compared exactly; nothing for any other text.
std::optional<CaptureMode> captureMode(std::string_view rawValue);

/// How a capture session ended.
namespace outcome {
struct Captured {
  platform::Image image;  ///< The selected area only, in pixels.
};
struct Cancelled {};
struct NoScreenAccess {};
struct NoPreviousSelection {};
}  // namespace outcome

using CaptureOutcome = std::variant<outcome::Captured, outcome::Cancelled, outcome::NoScreenAccess,
                                    outcome::NoPreviousSelection>;

/// Whether to keep the recognised line breaks (true), to join the lines (false), or to let the user's
/// setting decide (absent).
using LineBreaksOverride = std::optional<bool>;

/// Receives a request's end with the request's mode and override: at most once, on the main thread.
using CaptureCompletion = std::function<void(CaptureOutcome, CaptureMode, LineBreaksOverride)>;

}  // namespace lumiscan
