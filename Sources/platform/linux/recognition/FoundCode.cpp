#include "platform/linux/recognition/FoundCode.h"

#include <algorithm>
#include <utility>

namespace lumiscan::desktop {

namespace {

/// Whether two boxes overlap or all but touch: what is left of a code after painting borders on it.
bool meet(const PixelBox& a, const PixelBox& b) {
  constexpr int gap = 4;  // Pixels.
  return a.left <= b.right + gap && b.left <= a.right + gap && a.top <= b.bottom + gap &&
         b.top <= a.bottom + gap;
}

}  // namespace

void addIfNew(std::vector<FoundCode>& codes, FoundCode code) {
  const bool known = std::any_of(codes.begin(), codes.end(), [&](const FoundCode& other) {
    return other.result.format() == code.result.format() && other.result.bytes() == code.result.bytes() &&
           meet(other.box, code.box);
  });
  if (!known) codes.push_back(std::move(code));
}

}  // namespace lumiscan::desktop
