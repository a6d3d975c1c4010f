#include "platform/linux/recognition/CodeSearch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>
#include <optional>
#include <thread>
#include <utility>

#include "platform/linux/recognition/CodeReader.h"
#include "platform/linux/recognition/CodeRegions.h"
#include "platform/linux/recognition/CodeView.h"

namespace lumiscan::desktop {

namespace {

using ZXing::BarcodeFormats;

constexpr int shortestBars = 4;  // Pixels.

/// Calls work(0) to work(count - 1) on all processors; returns when all are done. Throws what one threw.
template <typename Work>
void inParallel(std::size_t count, const Work& work) {
  std::atomic<std::size_t> next{0};
  const auto worker = [&] {
    for (std::size_t i = next++; i < count; i = next++) work(i);
  };
  std::vector<std::future<void>> helpers;
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  for (std::size_t i = 1; i < std::min(count, processors); ++i)
    helpers.push_back(std::async(std::launch::async, worker));
  worker();
  for (std::future<void>& helper : helpers) helper.get();
}

/// Paints the codes over with the ground around them, so that nothing is left of them to look at.
void paintOver(GreyBitmap& bitmap, const std::vector<FoundCode>& codes) {
  for (const FoundCode& code : codes) {
    // A box may lie in the middle of the outermost modules.
    const int beyond = 2 + std::max(code.box.width(), code.box.height()) / 25;
    const PixelBox box{std::max(0, code.box.left - beyond), std::max(0, code.box.top - beyond),
                       std::min(bitmap.width - 1, code.box.right + beyond),
                       std::min(bitmap.height - 1, code.box.bottom + beyond)};
    if (box.left <= box.right && box.top <= box.bottom) fillBox(bitmap, box, bitmap.at(box.left, box.top));
  }
}

bool isPlain(const GreyBitmap& image) {
  const auto [darkest, lightest] = std::minmax_element(image.pixels.begin(), image.pixels.end());
  return *darkest == *lightest;
}

/// The image as it is, in both polarities.
std::vector<FoundCode> searchWhole(const GreyBitmap& image, BarcodeFormats formats) {
  std::vector<FoundCode> found[2];
  const auto read = [&](std::size_t polarity) {
    found[polarity] = readCodes(polarity == 0 ? image : inverted(image), {formats, shortestBars});
  };
  constexpr std::size_t mostAtOnce = 50'000'000;  // Pixels; each polarity takes some bytes a pixel.
  if (image.pixels.size() <= mostAtOnce) {
    inParallel(2, read);
  } else {
    read(0);
    read(1);
  }
  for (FoundCode& code : found[1]) addIfNew(found[0], std::move(code));
  return std::move(found[0]);
}

std::vector<FoundCode> searchPart(const GreyBitmap& image, const PixelBox& part, BarcodeFormats formats,
                                  Look look) {
  double tilt = 0;
  if (look.upright) {
    constexpr double leastTilt = 0.01;  // Radians; less doesn't matter to the library.
    tilt = tiltOf(image, part);
    if (std::abs(tilt) < leastTilt) return {};
  }
  for (const bool negative : {false, true}) {
    look.negative = negative;
    const CodeView view(image, part, look, tilt);
    std::vector<FoundCode> found =
        readCodes(view.bitmap(), {formats, shortestBars * look.factor, look.fixedThreshold});
    for (FoundCode& code : found) code.box = view.toImage(code.box);
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace

std::vector<FoundCode> searchCodes(const GreyBitmap& image, BarcodeFormats formats) {
  std::vector<FoundCode> found = searchWhole(image, formats);
  GreyBitmap rest = image;
  paintOver(rest, found);

  constexpr Look looks[] = {{.factor = 1},
                            {.factor = 3},
                            {.factor = 2, .smooth = true},
                            {.factor = 2, .smooth = true, .fixedThreshold = true},
                            {.factor = 4, .smooth = true},
                            {.factor = 1, .upright = true},
                            {.factor = 2, .smooth = true, .upright = true},
                            {.factor = 3, .smooth = true, .upright = true, .fixedThreshold = true}};
  std::optional<std::vector<PixelBox>> regions;
  std::int64_t work = 20'000'000;  // Pixels to look at, at most.
  for (const Look& look : looks) {
    if (!regions) {
      regions = regionsOfInterest(rest);
      // The whole of a small image too: what was selected to be read may be all code.
      constexpr std::int64_t smallImage = 500'000;
      const PixelBox whole{0, 0, image.width - 1, image.height - 1};
      if (found.empty() && whole.area() <= smallImage && !isPlain(image)) regions->push_back(whole);
    }
    constexpr std::int64_t largestView =
        4'000'000;  // Pixels; a part that is large itself holds no small code.
    std::vector<PixelBox> parts;
    for (const PixelBox& region : *regions) {
      const std::int64_t pixels = region.area() * look.factor * look.factor;
      if (pixels > largestView || pixels > work) break;
      work -= pixels;
      parts.push_back(region);
    }
    std::vector<std::vector<FoundCode>> results(parts.size());
    inParallel(parts.size(), [&](std::size_t i) { results[i] = searchPart(rest, parts[i], formats, look); });
    for (std::vector<FoundCode>& result : results) {
      if (result.empty()) continue;
      paintOver(rest, result);
      regions.reset();
      for (FoundCode& code : result) addIfNew(found, std::move(code));
    }
  }
  return found;
}

}  // namespace lumiscan::desktop
