#include "platform/linux/recognition/Clusters.h"

#include <algorithm>
#include <iterator>

namespace lumiscan::desktop {

namespace {

/// Whether one piece stands over the other, or is a dot above letters that touch. What lies beside a piece,
/// as a full stop beneath the arm of a T, is no part of it.
bool areStacked(const Glyph& a, const Glyph& b) {
  const Glyph& upper = a.middle() < b.middle() ? a : b;
  const Glyph& lower = &upper == &a ? b : a;
  const int overlap = std::min(a.box.right, b.box.right) - std::max(a.box.left, b.box.left) + 1;
  if (upper.box.bottom < lower.box.top)
    return 2 * overlap >= std::min(a.width(), b.width()) && !isBeneathQuotationMark(lower, upper);
  return overlap == upper.width() && upper.box.bottom < lower.middle();
}

/// Puts a point beneath the second stroke of a double mark behind it, however far to the left it reaches.
void orderPoints(std::vector<Cluster>& clusters) {
  for (std::size_t i = 1; i + 1 < clusters.size(); ++i) {
    const Glyph& before = clusters[i - 1].glyphs.front();
    const Glyph& stroke = clusters[i + 1].glyphs.front();
    const bool arePair = before.box.top == stroke.box.top && before.box.bottom == stroke.box.bottom &&
                         stroke.box.left - before.box.right <= stroke.height();
    if (arePair && isBeneathQuotationMark(clusters[i].glyphs.front(), stroke))
      std::swap(clusters[i], clusters[i + 1]);
  }
}

}  // namespace

bool isBeneathQuotationMark(const Glyph& point, const Glyph& stroke) {
  return stroke.height() >= std::max(3, 2 * stroke.width()) && 2 * point.height() <= 3 * stroke.height() &&
         point.box.top - stroke.box.bottom > stroke.height();
}

std::vector<Cluster> clustersOf(const std::vector<Glyph>& glyphs) {
  std::vector<Cluster> clusters;
  for (const Glyph& glyph : glyphs) {
    const auto home = std::find_if(clusters.rbegin(), clusters.rend(), [&](const Cluster& cluster) {
      return std::any_of(cluster.glyphs.begin(), cluster.glyphs.end(),
                         [&](const Glyph& other) { return areStacked(other, glyph); });
    });
    if (home == clusters.rend()) {
      clusters.push_back({{glyph}, glyph.box});
    } else {
      home->glyphs.push_back(glyph);
      home->box = boxAround(home->glyphs);
    }
  }
  std::sort(clusters.begin(), clusters.end(),
            [](const Cluster& a, const Cluster& b) { return a.box.left < b.box.left; });
  orderPoints(clusters);
  return clusters;
}

Cluster joined(const std::vector<Cluster>& clusters, std::size_t first, std::size_t count) {
  Cluster whole;
  for (std::size_t i = first; i < first + count; ++i)
    whole.glyphs.insert(whole.glyphs.end(), clusters[i].glyphs.begin(), clusters[i].glyphs.end());
  whole.box = boxAround(whole.glyphs);
  return whole;
}

}  // namespace lumiscan::desktop
