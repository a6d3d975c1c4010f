#pragma once

#include <optional>
#include <string_view>

#include "platform/Image.h"
#include "platform/QRCode.h"

namespace lumiscan::desktop {

/// A QR code as `platform::generateQRCode` promises it. Any thread.
std::optional<platform::Image> makeQRCode(std::string_view message, platform::QRCorrectionLevel level);

}  // namespace lumiscan::desktop
