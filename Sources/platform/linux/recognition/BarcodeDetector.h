#pragma once

#include "platform/BarcodeDetector.h"

namespace lumiscan::desktop {

/// Finds codes with ZXing: dark on light and light on dark, in all four directions, as small as one pixel a
/// module, and without a quiet zone.
class ZXingDetector : public platform::BarcodeDetector {
 public:
  platform::Result<std::vector<platform::BarcodeObservation>> perform(
      const std::vector<platform::Symbology>& symbologies, const platform::Image& image) override;
};

}  // namespace lumiscan::desktop
