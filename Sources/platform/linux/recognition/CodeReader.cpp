#include "platform/linux/recognition/CodeReader.h"

#include <ZXing/ReadBarcode.h>

#include <algorithm>
#include <utility>

#include "platform/linux/recognition/BarTracing.h"

namespace lumiscan::desktop {

namespace {

using ZXing::BarcodeFormat;
using ZXing::BarcodeFormats;

constexpr std::uint8_t light = 255;

BarcodeFormats common(BarcodeFormats formats, BarcodeFormat group) { return formats & BarcodeFormats(group); }

ZXing::ImageView viewOf(const GreyBitmap& bitmap) {
  return {bitmap.pixels.data(), bitmap.width, bitmap.height, ZXing::ImageFormat::Lum};
}

PixelBox boxAround(const ZXing::Position& position) {
  const auto [left, right] = std::minmax({position[0].x, position[1].x, position[2].x, position[3].x});
  const auto [top, bottom] = std::minmax({position[0].y, position[1].y, position[2].y, position[3].y});
  return {left, top, right, bottom};
}

ZXing::DecodeHints hintsFor(BarcodeFormats formats, const ReadOptions& options) {
  ZXing::DecodeHints hints;
  hints.setFormats(formats);
  if (options.fixedThreshold) hints.setBinarizer(ZXing::Binarizer::FixedThreshold);
  return hints;
}

void readMatrixCodes(GreyBitmap& bitmap, const ReadOptions& options, std::vector<FoundCode>& found) {
  const BarcodeFormats formats = common(options.formats, BarcodeFormat::MatrixCodes);
  if (formats.empty()) return;
  const ZXing::DecodeHints hints = hintsFor(formats, options);
  for (ZXing::Result& result : ZXing::ReadBarcodes(viewOf(bitmap), hints)) {
    if (!result.isValid()) continue;
    const PixelBox box = boxAround(result.position());
    addIfNew(found, {std::move(result), box});
    // Stripes of a stacked code would be read as a linear one.
    fillBox(bitmap, box, light);
  }
}

/// The library compares linear codes only while it has seen them on one line, and ends the process by an
/// assertion otherwise: with two equal codes in one image, or one code in two of its reduced sizes. Asked
/// for a single code in a single size it compares none; so linear codes are asked for one at a time.
void readLinearCodes(GreyBitmap& bitmap, const ReadOptions& options, std::vector<FoundCode>& found) {
  const BarcodeFormats formats = common(options.formats, BarcodeFormat::LinearCodes);
  if (formats.empty()) return;
  ZXing::DecodeHints hints = hintsFor(formats, options);
  hints.setMaxNumberOfSymbols(1).setTryDownscale(false);
  constexpr int mostCodes = 200;
  for (int i = 0; i < mostCodes; ++i) {
    ZXing::Result result = ZXing::ReadBarcode(viewOf(bitmap), hints);
    if (!result.isValid()) return;
    const Bars bars = paintOverBars(bitmap, result.position(), light);
    // Letters make bars of a few pixels' length now and then; a code's are longer.
    if (bars.length >= options.shortestBars) addIfNew(found, {std::move(result), bars.box});
  }
}

}  // namespace

std::vector<FoundCode> readCodes(GreyBitmap bitmap, const ReadOptions& options) {
  std::vector<FoundCode> found;
  readMatrixCodes(bitmap, options, found);
  readLinearCodes(bitmap, options, found);
  return found;
}

}  // namespace lumiscan::desktop
