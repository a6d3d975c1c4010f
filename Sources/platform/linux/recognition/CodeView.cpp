#include "platform/linux/recognition/CodeView.h"

#include <leptonica/allheaders.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

struct PixDestroyer {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPointer = std::unique_ptr<Pix, PixDestroyer>;

/// The library returns nothing when it runs out of memory.
PixPointer owned(Pix* pix) {
  if (!pix) throw std::bad_alloc();
  return PixPointer(pix);
}

PixPointer pixOf(const GreyBitmap& image, const PixelBox& part, bool negative) {
  const int flip = negative ? 255 : 0;
  PixPointer pix = owned(pixCreate(part.width(), part.height(), 8));
  for (int y = 0; y < part.height(); ++y) {
    l_uint32* row = pixGetData(pix.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix.get());
    for (int x = 0; x < part.width(); ++x)
      SET_DATA_BYTE(row, x, static_cast<l_uint8>(image.at(part.left + x, part.top + y) ^ flip));
  }
  return pix;
}

GreyBitmap bitmapOf(Pix* pix) {
  GreyBitmap bitmap(pixGetWidth(pix), pixGetHeight(pix), 0);
  const l_uint32* data = pixGetData(pix);
  for (int y = 0; y < bitmap.height; ++y, data += pixGetWpl(pix))
    for (int x = 0; x < bitmap.width; ++x)
      bitmap.at(x, y) = static_cast<std::uint8_t>(GET_DATA_BYTE(data, x));
  return bitmap;
}

/// The luminance below which a share of the outermost pixels lies, from 0 to 1.
int levelOfEdge(Pix* pix, double share) {
  const int right = pixGetWidth(pix) - 1;
  const int bottom = pixGetHeight(pix) - 1;
  std::vector<int> edge;
  const auto add = [&](int x, int y) {
    const l_uint32* row = pixGetData(pix) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix);
    edge.push_back(GET_DATA_BYTE(row, x));
  };
  for (int x = 0; x <= right; ++x)
    for (const int y : {0, bottom}) add(x, y);
  for (int y = 0; y <= bottom; ++y)
    for (const int x : {0, right}) add(x, y);
  return levelAt(std::move(edge), share);
}

PixPointer scaled(Pix* pix, const Look& look) {
  const auto factor = static_cast<l_float32>(look.factor);
  if (look.factor == 1) return owned(pixCopy(nullptr, pix));
  return owned(look.smooth ? pixScaleGrayLI(pix, factor, factor) : pixExpandReplicate(pix, look.factor));
}

/// From black to white, but for the few pixels that are darker or lighter than almost all others.
void stretchContrast(Pix* pix) {
  std::vector<int> values;
  constexpr int step = 2;
  for (int y = 0; y < pixGetHeight(pix); y += step) {
    const l_uint32* row = pixGetData(pix) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix);
    for (int x = 0; x < pixGetWidth(pix); x += step) values.push_back(GET_DATA_BYTE(row, x));
  }
  constexpr double share = 0.04;
  const int darkest = levelAt(values, share);
  const int lightest = levelAt(std::move(values), 1 - share);
  if (darkest < lightest) pixGammaTRC(pix, pix, 1, darkest, lightest);
}

/// The box around all that is light, if it lies on dark ground; otherwise around everything.
PixelBox lightCard(Pix* pix) {
  constexpr int middle = 128;
  const PixelBox everything{0, 0, pixGetWidth(pix) - 1, pixGetHeight(pix) - 1};
  if (levelOfEdge(pix, 0.95) >= middle) return everything;
  const PixPointer light = owned(pixThresholdToBinary(pix, middle));
  pixInvert(light.get(), light.get());
  Box* found = nullptr;
  if (pixClipToForeground(light.get(), nullptr, &found) != 0 || !found) return everything;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  boxGetGeometry(found, &x, &y, &width, &height);
  boxDestroy(&found);
  return {x, y, x + width - 1, y + height - 1};
}

PixPointer cutOut(Pix* pix, const PixelBox& box) {
  Box* clip = boxCreate(box.left, box.top, box.width(), box.height());
  Pix* cut = pixClipRectangle(pix, clip, nullptr);
  boxDestroy(&clip);
  return owned(cut);
}

GreyBitmap framed(Pix* pix, const Look& look, double tilt) {
  constexpr int quietZone = 12;  // Pixels of the image.
  // Cut out tightly, a code has its ground in the light part of the edge.
  const auto ground = static_cast<std::uint8_t>(levelOfEdge(pix, 0.8));
  const PixPointer large = scaled(pix, look);
  // What is turned needs room for its corners.
  const double turn = std::abs(std::sin(tilt)) / 2;
  const int beside = quietZone * look.factor + static_cast<int>(turn * pixGetHeight(large.get()));
  const int above = quietZone * look.factor + static_cast<int>(turn * pixGetWidth(large.get()));
  PixPointer result = owned(pixAddBorderGeneral(large.get(), beside, beside, above, above, ground));
  if (tilt != 0) result = owned(pixRotateAMGray(result.get(), static_cast<l_float32>(-tilt), ground));
  return bitmapOf(result.get());
}

}  // namespace

CodeView::CodeView(const GreyBitmap& image, const PixelBox& part, const Look& look, double tilt)
    : bitmap_(0, 0, 0), factor_(look.factor), tilt_(tilt) {
  PixPointer pix = pixOf(image, part, look.negative);
  stretchContrast(pix.get());
  const PixelBox card = lightCard(pix.get());
  pix = cutOut(pix.get(), card);
  bitmap_ = framed(pix.get(), look, tilt);
  centreX_ = part.left + (card.left + card.right) / 2.0;
  centreY_ = part.top + (card.top + card.bottom) / 2.0;
}

PixelBox CodeView::toImage(const PixelBox& box) const {
  std::vector<double> xs;
  std::vector<double> ys;
  for (const int x : {box.left, box.right})
    for (const int y : {box.top, box.bottom}) {
      const double dx = (x - (bitmap_.width - 1) / 2.0) / factor_;
      const double dy = (y - (bitmap_.height - 1) / 2.0) / factor_;
      xs.push_back(centreX_ + dx * std::cos(tilt_) - dy * std::sin(tilt_));
      ys.push_back(centreY_ + dx * std::sin(tilt_) + dy * std::cos(tilt_));
    }
  const auto [left, right] = std::minmax_element(xs.begin(), xs.end());
  const auto [top, bottom] = std::minmax_element(ys.begin(), ys.end());
  return {static_cast<int>(std::floor(*left)), static_cast<int>(std::floor(*top)),
          static_cast<int>(std::ceil(*right)), static_cast<int>(std::ceil(*bottom))};
}

double tiltOf(const GreyBitmap& image, const PixelBox& part) {
  constexpr double faint = 24;
  double cosines = 0;
  double sines = 0;
  for (int y = part.top + 1; y < part.bottom; ++y)
    for (int x = part.left + 1; x < part.right; ++x) {
      const double dx = image.at(x + 1, y) - image.at(x - 1, y);
      const double dy = image.at(x, y + 1) - image.at(x, y - 1);
      const double strength = std::hypot(dx, dy);
      if (strength < faint) continue;
      // Four times the angle is the same for edges at right angles; so is a weight without a direction.
      const double cosine = dx / strength;
      const double sine = dy / strength;
      const double cosine2 = cosine * cosine - sine * sine;
      const double sine2 = 2 * sine * cosine;
      cosines += strength * (cosine2 * cosine2 - sine2 * sine2);
      sines += strength * 2 * sine2 * cosine2;
    }
  return std::atan2(sines, cosines) / 4;
}

}  // namespace lumiscan::desktop
