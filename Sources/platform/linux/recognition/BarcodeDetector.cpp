#include "platform/linux/recognition/BarcodeDetector.h"

#include <algorithm>
#include <exception>
#include <string>
#include <string_view>
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

/// Whether a part of the content is declared to be bytes, by \000899. There a backslash stands for itself
/// twice.
bool declaresBytes(const ZXing::ByteArray& contentWithECI) {
  const std::string_view content = contentWithECI.asString();
  for (std::size_t i = content.find('\\'); i != std::string_view::npos; i = content.find('\\', i + 2))
    if (content.substr(i).starts_with("\\000899")) return true;
  return false;
}

/// What the code says, if that is text. Tabs and the separators of fields are text; the library calls all
/// that has such characters binary.
std::optional<std::string> textOf(const ZXing::Result& result) {
  const std::string bytes(result.bytes().asString());
  if (bytes.empty()) return bytes;
  // The library guesses the encoding of unmarked bytes, and takes short UTF-8 for something else.
  if (!result.hasECI() && bytes.find('\0') == std::string::npos && platform::validUTF8(bytes) == bytes)
    return bytes;
  switch (result.contentType()) {
    case ZXing::ContentType::Text:
    case ZXing::ContentType::GS1:
    case ZXing::ContentType::ISO15434:
      return result.text();
    case ZXing::ContentType::Binary:
    case ZXing::ContentType::Mixed:
      if (result.hasECI() && !declaresBytes(result.bytesECI())) return result.text();
      return std::nullopt;
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
