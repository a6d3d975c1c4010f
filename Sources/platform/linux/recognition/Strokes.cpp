#include "platform/linux/recognition/Strokes.h"

#include <algorithm>

namespace lumiscan::desktop {

std::vector<PixelBox> strokesAlong(const GreyBitmap& ink, const PixelBox& box) {
  constexpr int fainter = 88;  // Per cent of the ink before and behind.
  std::vector<PixelBox> strokes;
  int peak = 0;             // Of this stroke so far,
  int valley = 0;           // and the least ink behind it,
  int faintest = box.left;  // which is there.
  for (int x = box.left; x <= box.right; ++x) {
    int most = 0;
    for (int y = box.top; y <= box.bottom; ++y) most = std::max<int>(most, ink.at(x, y));
    const bool rises = most > valley && 100 * valley <= fainter * peak && 100 * valley <= fainter * most;
    if (strokes.empty() || rises) {
      if (!strokes.empty()) strokes.back().right = faintest;
      strokes.push_back({x, box.top, box.right, box.bottom});
      peak = valley = most;
    }
    if (most > peak) peak = valley = most;
    if (most <= valley) {
      valley = most;
      faintest = x;
    }
  }
  return strokes;
}

}  // namespace lumiscan::desktop
