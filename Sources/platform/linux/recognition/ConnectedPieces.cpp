#include "platform/linux/recognition/ConnectedPieces.h"

#include <leptonica/allheaders.h>

#include <cstddef>
#include <memory>
#include <new>

namespace lumiscan::desktop {

namespace {

struct Destroy {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
  void operator()(Boxa* boxes) const { boxaDestroy(&boxes); }
};

using Bits = std::unique_ptr<Pix, Destroy>;

Bits bitsOf(int width, int height) {
  Bits bits(pixCreate(width, height, 1));
  if (!bits) throw std::bad_alloc();
  return bits;
}

std::vector<PixelBox> boxesIn(const Bits& bits, int connectivity) {
  const std::unique_ptr<Boxa, Destroy> found(pixConnCompBB(bits.get(), connectivity));
  std::vector<PixelBox> boxes;
  for (int i = 0; found && i < boxaGetCount(found.get()); ++i) {
    int x = 0, y = 0, width = 0, height = 0;
    boxaGetBoxGeometry(found.get(), i, &x, &y, &width, &height);
    boxes.push_back({x, y, x + width - 1, y + height - 1});
  }
  return boxes;
}

}  // namespace

std::vector<PixelBox> connectedPieces(const GreyBitmap& ink, int threshold) {
  const Bits bits = bitsOf(ink.width, ink.height);
  for (int y = 0; y < ink.height; ++y) {
    l_uint32* const line = pixGetData(bits.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(bits.get());
    for (int x = 0; x < ink.width; ++x)
      if (ink.at(x, y) >= threshold) SET_DATA_BIT(line, x);
  }
  return boxesIn(bits, 8);
}

std::vector<PixelBox> joinedWhereNear(const std::vector<PixelBox>& boxes, int gap, const GreyBitmap& ink) {
  // Each is drawn so much wider and higher that those that are near touch.
  const Bits bits = bitsOf(ink.width + gap, ink.height + gap);
  for (const PixelBox& box : boxes)
    pixRasterop(bits.get(), box.left, box.top, box.width() + gap, box.height() + gap, PIX_SET, nullptr, 0, 0);
  std::vector<PixelBox> joined = boxesIn(bits, 4);
  for (PixelBox& box : joined) {
    box.right -= gap;
    box.bottom -= gap;
  }
  return joined;
}

}  // namespace lumiscan::desktop
