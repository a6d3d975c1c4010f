#include "platform/linux/recognition/FoundCode.h"

#include <algorithm>
#include <utility>

namespace lumiscan::desktop {

namespace {

/// Whether two boxes overlap or are nearer than `gap` pixels.
bool meet(const PixelBox& a, const PixelBox& b, int gap) {
  return a.left < b.right + gap && b.left < a.right + gap && a.top < b.bottom + gap && b.top < a.bottom + gap;
}

/// Whether one code was found twice. Of linear codes the ends of the bars may be left when they are painted
/// over; equal codes of two dimensions may stand as near as their margins allow, which are pixels.
bool areOne(const FoundCode& a, const FoundCode& b) {
  if (a.result.format() != b.result.format() || a.result.bytes() != b.result.bytes()) return false;
  const bool linear = ZXing::BarcodeFormats(ZXing::BarcodeFormat::LinearCodes).testFlag(a.result.format());
  constexpr int barEnds = 5;
  return meet(a.box, b.box, linear ? barEnds : 1);
}

}  // namespace

void addIfNew(std::vector<FoundCode>& codes, FoundCode code) {
  const bool known =
      std::any_of(codes.begin(), codes.end(), [&](const FoundCode& other) { return areOne(other, code); });
  if (!known) codes.push_back(std::move(code));
}

}  // namespace lumiscan::desktop
