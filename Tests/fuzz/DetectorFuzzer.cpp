// Searches arbitrary images for codes.

#include "fuzz/ImageFromBytes.h"
#include "fuzz/Target.h"
#include "platform/linux/recognition/BarcodeDetector.h"

void lumiscan::fuzzing::use(std::string_view input) {
  using platform::Symbology;
  const std::vector<Symbology> symbologies{
      Symbology::qr,   Symbology::aztec,   Symbology::dataMatrix, Symbology::pdf417, Symbology::ean13,
      Symbology::ean8, Symbology::code128, Symbology::code39,     Symbology::code93, Symbology::upce};
  constexpr std::size_t mostPixels = 20'000;
  const platform::Image image = imageFromBytes(input, mostPixels);
  const auto codes = desktop::ZXingDetector().perform(symbologies, image);
  // The library must come to an end by itself, not by an exception; only a side beyond the limit is refused.
  const bool fits = image.width() <= 16'384 && image.height() <= 16'384;
  require(codes.ok() == fits);
}
