#include "platform/linux/recognition/BarcodeDetector.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "platform/UTF8.h"
#include "platform/linux/recognition/CodeSearch.h"

namespace lumiscan::desktop {

namespace {

using platform::BarcodeObservation;
using platform::Symbology;
using ZXing::BarcodeFormat;

constexpr std::pair<Symbology, BarcodeFormat> symbologyFormats[] = {
    {Symbology::qr, BarcodeFormat::QRCode},
    {Symbology::aztec, BarcodeFormat::Aztec},
    {Symbology::dataMatrix, BarcodeFormat::DataMatrix},
    {Symbology::pdf417, BarcodeFormat::PDF417},
    {Symbology::ean13, BarcodeFormat::EAN13},
    {Symbology::ean8, BarcodeFormat::EAN8},
    {Symbology::code128, BarcodeFormat::Code128},
    {Symbology::code39, BarcodeFormat::Code39},
    {Symbology::code93, BarcodeFormat::Code93},
    {Symbology::upce, BarcodeFormat::UPCE},
};

ZXing::BarcodeFormats formatsOf(const std::vector<Symbology>& symbologies) {
  ZXing::BarcodeFormats formats;
  for (const auto& [symbology, format] : symbologyFormats)
    if (std::find(symbologies.begin(), symbologies.end(), symbology) != symbologies.end()) formats |= format;
  return formats;
}

Symbology symbologyOf(BarcodeFormat wanted) {
  for (const auto& [symbology, format] : symbologyFormats)
    if (format == wanted) return symbology;
  return Symbology::qr;
}

std::optional<std::string> textOf(const ZXing::Result& result) {
  const ZXing::ByteArray& bytes = result.bytes();
  if (bytes.empty()) return std::string();
  switch (result.contentType()) {
    case ZXing::ContentType::Text:
    case ZXing::ContentType::GS1:
    case ZXing::ContentType::ISO15434:
      // The library guesses the encoding of unmarked bytes, and takes short UTF-8 for something else.
      if (const std::string text(bytes.begin(), bytes.end());
          !result.hasECI() && platform::validUTF8(text) == text)
        return text;
      return result.text();
    case ZXing::ContentType::Binary:
    case ZXing::ContentType::Mixed:
    case ZXing::ContentType::UnknownECI:
      return std::nullopt;
  }
  return std::nullopt;
}

/// Top to bottom, then left to right; codes side by side are one row, however their heights differ.
void sortInReadingOrder(std::vector<FoundCode>& codes) {
  std::stable_sort(codes.begin(), codes.end(), [](const FoundCode& a, const FoundCode& b) {
    return std::pair(a.box.top, a.box.left) < std::pair(b.box.top, b.box.left);
  });
  for (auto first = codes.begin(); first != codes.end();) {
    const int middle = (first->box.top + first->box.bottom) / 2;
    const auto last =
        std::find_if(first, codes.end(), [&](const FoundCode& code) { return code.box.top > middle; });
    std::stable_sort(first, last,
                     [](const FoundCode& a, const FoundCode& b) { return a.box.left < b.box.left; });
    first = last;
  }
}

}  // namespace

platform::Result<std::vector<BarcodeObservation>> ZXingDetector::perform(
    const std::vector<Symbology>& symbologies, const platform::Image& image) {
  if (const auto problem = sizeProblem(image)) return *problem;
  const ZXing::BarcodeFormats formats = formatsOf(symbologies);
  // To the library no format means any format.
  if (formats.empty()) return std::vector<BarcodeObservation>();
  try {
    std::vector<FoundCode> codes = searchCodes(greyBitmap(image), formats);
    sortInReadingOrder(codes);
    std::vector<BarcodeObservation> observations;
    for (const FoundCode& code : codes)
      observations.push_back({symbologyOf(code.result.format()), textOf(code.result)});
    return observations;
  } catch (const std::bad_alloc&) {
    return platform::Error{"There is not enough memory to search the image for codes"};
  } catch (const std::exception& exception) {
    return platform::Error{std::string("The code reader failed: ") + exception.what()};
  }
}

}  // namespace lumiscan::desktop
