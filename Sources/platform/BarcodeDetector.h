#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan::platform {

enum class Symbology { qr, aztec, dataMatrix, pdf417, ean13, ean8, code128, code39, code93, upce };

/// One code found in an image.
struct BarcodeObservation {
  Symbology symbology = Symbology::qr;
  /// The payload as UTF-8 text; absent when the payload isn't text.
  std::optional<std::string> payloadStringValue;
};

/// Finds machine-readable codes in images. Any thread; concurrent calls share nothing they could disturb.
class BarcodeDetector {
 public:
  virtual ~BarcodeDetector() = default;

  /// That of the installed desktop.
  static BarcodeDetector& shared();

  /// Every code of the given symbologies and no others, in a fixed order (top to bottom, then left to
  /// right); blocks until done. Fails with a text when the image can't be searched.
  virtual Result<std::vector<BarcodeObservation>> perform(const std::vector<Symbology>& symbologies,
                                                          const Image& image) = 0;
};

}  // namespace lumiscan::platform
