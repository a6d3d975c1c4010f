#include "recognition/BarcodeService.h"

#include "platform/BarcodeDetector.h"

namespace lumiscan::BarcodeService {

platform::Result<std::vector<std::string>> decode(const platform::Image& image) {
  using platform::Symbology;
  static const std::vector<Symbology> symbologies = {
      Symbology::qr,   Symbology::aztec,   Symbology::dataMatrix, Symbology::pdf417, Symbology::ean13,
      Symbology::ean8, Symbology::code128, Symbology::code39,     Symbology::code93, Symbology::upce,
  };
  const auto observations = platform::BarcodeDetector::shared().perform(symbologies, image);
  if (!observations.ok()) return observations.error();
  std::vector<std::string> payloads;
  for (const platform::BarcodeObservation& observation : observations.value())
    if (observation.payloadStringValue) payloads.push_back(*observation.payloadStringValue);
  return payloads;
}

}  // namespace lumiscan::BarcodeService
