#pragma once

#include <optional>
#include <string_view>

#include "platform/Image.h"

namespace lumiscan::platform {

/// How much of a code may be damaged: about 7, 15, 25 and 30 %.
enum class QRCorrectionLevel { low, medium, quartile, high };

/// A QR code that holds the bytes of `message`, dark on light, one pixel a module, with its quiet zone of
/// 4 modules. Nothing when the message doesn't fit in a code. Any thread.
std::optional<Image> generateQRCode(std::string_view message, QRCorrectionLevel level);

}  // namespace lumiscan::platform
