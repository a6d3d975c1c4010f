#include "platform/linux/recognition/Resampling.h"

#include <algorithm>
#include <cmath>

namespace lumiscan::desktop {

namespace {

/// Catmull-Rom's cubic: smooth, and sharper than a linear transition.
double cubic(double x) {
  x = std::abs(x);
  if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
  if (x < 2) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
  return 0;
}

/// The share that each old pixel has in each of `size` new ones along one axis.
struct Weights {
  struct Tap {
    int first;
    std::vector<float> shares;
  };
  std::vector<Tap> taps;

  Weights(int oldSize, int size) {
    const double step = static_cast<double>(oldSize) / size;
    const double stretch = std::max(1.0, step);
    for (int i = 0; i < size; ++i) {
      const double centre = (i + 0.5) * step - 0.5;
      const int first = static_cast<int>(std::floor(centre - 2 * stretch)) + 1;
      const int last = static_cast<int>(std::ceil(centre + 2 * stretch)) - 1;
      Tap tap{first, {}};
      double sum = 0;
      for (int k = first; k <= last; ++k) {
        tap.shares.push_back(static_cast<float>(cubic((k - centre) / stretch)));
        sum += static_cast<double>(tap.shares.back());
      }
      for (float& share : tap.shares) share /= static_cast<float>(sum);
      taps.push_back(std::move(tap));
    }
  }
};

}  // namespace

GreyBitmap resampled(const GreyBitmap& bitmap, int width, int height) {
  const Weights across(bitmap.width, width);
  std::vector<float> wide(static_cast<std::size_t>(width) * static_cast<std::size_t>(bitmap.height));
  auto value = wide.begin();
  for (int y = 0; y < bitmap.height; ++y)
    for (const Weights::Tap& tap : across.taps) {
      float sum = 0;
      int x = tap.first;
      for (const float share : tap.shares)
        sum += share * static_cast<float>(bitmap.at(std::clamp(x++, 0, bitmap.width - 1), y));
      *value++ = sum;
    }
  const Weights down(bitmap.height, height);
  GreyBitmap result(width, height, 0);
  std::vector<float> sums(static_cast<std::size_t>(width));
  for (int y = 0; y < height; ++y) {
    const Weights::Tap& tap = down.taps[static_cast<std::size_t>(y)];
    std::fill(sums.begin(), sums.end(), 0.0F);
    int row = tap.first;
    for (const float share : tap.shares) {
      const auto offset = std::clamp(row++, 0, bitmap.height - 1) * static_cast<std::ptrdiff_t>(width);
      std::transform(sums.begin(), sums.end(), wide.begin() + offset, sums.begin(),
                     [share](float sum, float pixel) { return sum + share * pixel; });
    }
    for (int x = 0; x < width; ++x)
      result.at(x, y) =
          static_cast<std::uint8_t>(std::lround(std::clamp(sums[static_cast<std::size_t>(x)], 0.0F, 255.0F)));
  }
  return result;
}

}  // namespace lumiscan::desktop
