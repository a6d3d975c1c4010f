#include "platform/linux/recognition/CodeSearch.h"

#include <ZXing/ReadBarcode.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>
#include <utility>

#include "platform/linux/recognition/CodeRegions.h"

namespace lumiscan::desktop {

namespace {

using ZXing::BarcodeFormat;
using ZXing::BarcodeFormats;

constexpr std::uint8_t light = 255;

BarcodeFormats common(BarcodeFormats formats, BarcodeFormat group) { return formats & BarcodeFormats(group); }

PixelBox boxAround(const ZXing::Position& position) {
  const auto [left, right] = std::minmax({position[0].x, position[1].x, position[2].x, position[3].x});
  const auto [top, bottom] = std::minmax({position[0].y, position[1].y, position[2].y, position[3].y});
  return {left, top, right, bottom};
}

bool overlap(const PixelBox& a, const PixelBox& b) {
  return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

/// Whether the same code is among those found already.
bool isKnown(const FoundCode& code, const std::vector<FoundCode>& found) {
  return std::any_of(found.begin(), found.end(), [&](const FoundCode& other) {
    return other.result.format() == code.result.format() && other.result.bytes() == code.result.bytes() &&
           overlap(other.box, code.box);
  });
}

/// One image, or a part of one enlarged, and what was found in it. What is found is painted over, so that
/// no later look at the same pixels finds it again.
class Search {
 public:
  Search(GreyBitmap bitmap, BarcodeFormats formats) : bitmap_(std::move(bitmap)), formats_(formats) {}

  void findDarkOnLight() {
    findMatrixCodes();
    findLinearCodes();
  }

  void findLightOnDark() {
    bitmap_ = inverted(bitmap_);
    findDarkOnLight();
    bitmap_ = inverted(bitmap_);
  }

  std::vector<FoundCode> takeFound() { return std::move(found_); }

 private:
  ZXing::ImageView view() const {
    return {bitmap_.pixels.data(), bitmap_.width, bitmap_.height, ZXing::ImageFormat::Lum};
  }

  void findMatrixCodes() {
    const BarcodeFormats formats = common(formats_, BarcodeFormat::MatrixCodes);
    if (formats.empty()) return;
    ZXing::DecodeHints hints;
    hints.setFormats(formats);
    for (ZXing::Result& result : ZXing::ReadBarcodes(view(), hints)) addMatrixCode(std::move(result), 0, 0);
    // For some symbologies the library looks at the middle of the image only.
    for (const PixelBox& region : regionsOfInterest(bitmap_)) {
      const ZXing::ImageView part = view().cropped(region.left, region.top, region.right - region.left + 1,
                                                   region.bottom - region.top + 1);
      if (part.width() == bitmap_.width && part.height() == bitmap_.height) continue;
      for (ZXing::Result& result : ZXing::ReadBarcodes(part, hints))
        addMatrixCode(std::move(result), region.left, region.top);
    }
  }

  void addMatrixCode(ZXing::Result result, int dx, int dy) {
    if (!result.isValid()) return;
    PixelBox box = boxAround(result.position());
    box = {box.left + dx, box.top + dy, box.right + dx, box.bottom + dy};
    FoundCode code{std::move(result), box};
    if (isKnown(code, found_)) return;
    paintOver(box);
    found_.push_back(std::move(code));
  }

  void paintOver(const PixelBox& box) {
    for (int y = std::max(0, box.top); y <= std::min(bitmap_.height - 1, box.bottom); ++y)
      for (int x = std::max(0, box.left); x <= std::min(bitmap_.width - 1, box.right); ++x)
        bitmap_.at(x, y) = light;
  }

  /// The library compares linear codes only while it has seen them on one line, and ends the process by an
  /// assertion otherwise: with two equal codes in one image, or one code in two of its reduced sizes. Asked
  /// for a single code in a single size it compares none; so linear codes are asked for one at a time.
  void findLinearCodes() {
    const BarcodeFormats formats = common(formats_, BarcodeFormat::LinearCodes);
    if (formats.empty()) return;
    ZXing::DecodeHints hints;
    hints.setFormats(formats).setMaxNumberOfSymbols(1).setTryDownscale(false);
    constexpr int mostCodes = 200;
    for (int i = 0; i < mostCodes; ++i) {
      ZXing::Result result = ZXing::ReadBarcode(view(), hints);
      if (!result.isValid()) return;
      const auto [box, length] = paintOverBars(result.position());
      // Letters make bars of a few pixels' length now and then; a code's are longer.
      constexpr int shortestBars = 4;
      if (length >= shortestBars) found_.push_back({std::move(result), box});
    }
  }

  struct BarLine {
    double x, y;    // Where it starts,
    double dx, dy;  // its direction, of length 1,
    int length;     // and its length in pixels.
  };

  static std::pair<int, int> pixelOf(const BarLine& line, double along, double across) {
    return {static_cast<int>(std::lround(line.x + along * line.dx - across * line.dy)),
            static_cast<int>(std::lround(line.y + along * line.dy + across * line.dx))};
  }

  std::vector<std::uint8_t> sample(const BarLine& line, double shift, double across) const {
    std::vector<std::uint8_t> values(static_cast<std::size_t>(line.length), light);
    for (int i = 0; i < line.length; ++i) {
      const auto [x, y] = pixelOf(line, i + shift, across);
      if (bitmap_.contains(x, y)) values[static_cast<std::size_t>(i)] = bitmap_.at(x, y);
    }
    return values;
  }

  /// The share of the pixels that are dark in both or light in both.
  static double likeness(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    const auto [darkest, lightest] = std::minmax_element(a.begin(), a.end());
    const int threshold = (*darkest + *lightest) / 2;
    std::size_t same = 0;
    for (std::size_t i = 0; i < a.size(); ++i) same += (a[i] > threshold) == (b[i] > threshold);
    return static_cast<double>(same) / static_cast<double>(a.size());
  }

  /// A line across the bars, `across` pixels from the one on which the code was read and moved by `shift`
  /// along itself.
  struct Trace {
    double shift, across;
  };

  /// Follows the bars to one side of the line, as far as they look as they do on it.
  std::vector<Trace> follow(const BarLine& line, int side) const {
    constexpr double alike = 0.8;
    constexpr int longestGap = 3;  // A line drawn through the bars doesn't end them.
    const std::vector<std::uint8_t> pattern = sample(line, 0, 0);
    std::vector<Trace> traces;
    double shift = 0;  // Bars may lean.
    int gap = 0;
    for (int step = 1; step < bitmap_.width + bitmap_.height && gap <= longestGap; ++step) {
      const double across = side * step;
      double best = 0;
      double bestShift = shift;
      for (const double candidate : {shift, shift - 1, shift + 1}) {
        const double value = likeness(pattern, sample(line, candidate, across));
        if (value > best) std::tie(best, bestShift) = std::pair(value, candidate);
      }
      gap = best < alike ? gap + 1 : 0;
      if (gap > 0) continue;
      shift = bestShift;
      traces.push_back({shift, across});
    }
    return traces;
  }

  struct Bars {
    PixelBox box;
    std::size_t length = 0;  // In pixels.
  };

  Bars paintOverBars(const ZXing::Position& position) {
    const double startX = (position[0].x + position[3].x) / 2.0;
    const double startY = (position[0].y + position[3].y) / 2.0;
    const double dx = (position[1].x + position[2].x) / 2.0 - startX;
    const double dy = (position[1].y + position[2].y) / 2.0 - startY;
    const double length = std::max(1.0, std::hypot(dx, dy));
    const BarLine line{startX, startY, dx / length, dy / length, static_cast<int>(length) + 1};
    std::vector<Trace> traces{{0, 0}};
    for (const int side : {-1, 1}) {
      const std::vector<Trace> more = follow(line, side);
      traces.insert(traces.end(), more.begin(), more.end());
    }
    PixelBox box{bitmap_.width, bitmap_.height, -1, -1};
    constexpr int beyondEnds = 2;
    for (const Trace& trace : traces)
      for (int i = -beyondEnds; i < line.length + beyondEnds; ++i) {
        const auto [px, py] = pixelOf(line, i + trace.shift, trace.across);
        // The neighbours too: lines that lean leave pixels out between them.
        for (const auto& [x, y] : {std::pair(px, py), std::pair(px + 1, py), std::pair(px, py + 1)})
          if (bitmap_.contains(x, y)) bitmap_.at(x, y) = light;
        box = {std::min(box.left, px), std::min(box.top, py), std::max(box.right, px),
               std::max(box.bottom, py)};
      }
    return {box, traces.size()};
  }

  GreyBitmap bitmap_;
  BarcodeFormats formats_;
  std::vector<FoundCode> found_;
};

/// A second look at a part in which nothing was found as it is.
struct Enlargement {
  int factor;
  bool smooth;
};

std::vector<FoundCode> searchEnlarged(const GreyBitmap& image, const PixelBox& part, BarcodeFormats formats,
                                      Enlargement how, bool lightOnDark) {
  GreyBitmap enlarged = enlargedPart(image, part, how.factor, how.smooth);
  if (lightOnDark) enlarged = inverted(enlarged);
  // A code cut out tightly gets the light margin that its symbology demands.
  const int margin = 12 * how.factor;
  Search search(withMargin(enlarged, margin, light), formats);
  search.findDarkOnLight();
  std::vector<FoundCode> found = search.takeFound();
  for (FoundCode& code : found) {
    const auto back = [&](int value, int origin) { return (value - margin) / how.factor + origin; };
    code.box = {back(code.box.left, part.left), back(code.box.top, part.top), back(code.box.right, part.left),
                back(code.box.bottom, part.top)};
  }
  return found;
}

}  // namespace

std::vector<FoundCode> searchCodes(const GreyBitmap& image, BarcodeFormats formats) {
  Search search(image, formats);
  search.findDarkOnLight();
  search.findLightOnDark();
  std::vector<FoundCode> found = search.takeFound();
  if (!found.empty()) return found;

  // Of a large image only what may be a code is enlarged, and a part that is large itself holds no small one.
  constexpr int largestPart = 500'000;  // Pixels.
  const auto isSmall = [](const PixelBox& box) {
    return (box.right - box.left + 1) * (box.bottom - box.top + 1) <= largestPart;
  };
  std::vector<PixelBox> parts{{0, 0, image.width - 1, image.height - 1}};
  if (!isSmall(parts.front())) {
    parts = regionsOfInterest(image);
    std::erase_if(parts, [&](const PixelBox& box) { return !isSmall(box); });
  }
  constexpr std::array<Enlargement, 4> looks{{{1, false}, {3, false}, {2, true}, {4, true}}};
  for (const Enlargement& look : looks) {
    for (const PixelBox& part : parts)
      for (const bool lightOnDark : {false, true}) {
        std::vector<FoundCode> more = searchEnlarged(image, part, formats, look, lightOnDark);
        for (FoundCode& code : more)
          if (!isKnown(code, found)) found.push_back(std::move(code));
        if (!more.empty()) break;
      }
    if (!found.empty()) break;
  }
  return found;
}

}  // namespace lumiscan::desktop
