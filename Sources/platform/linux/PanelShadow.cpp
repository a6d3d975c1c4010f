#include "platform/linux/PanelShadow.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiscan::desktop {

namespace {

// In points.
constexpr double blurRadius = 18;
constexpr double drop = 6;
constexpr int darkness = 62;  // Of 255, at the darkest.

/// The mean over `radius` neighbours on either side, along lines of `length` values that are `step` apart.
void blurLine(std::uint8_t* first, int length, qsizetype step, int radius, std::vector<int>& sums) {
  sums.assign(static_cast<std::size_t>(length) + 1, 0);
  for (int i = 0; i < length; ++i)
    sums[static_cast<std::size_t>(i) + 1] = sums[static_cast<std::size_t>(i)] + first[i * step];
  for (int i = 0; i < length; ++i) {
    const int from = std::max(0, i - radius);
    const int to = std::min(length, i + radius + 1);
    const int sum = sums[static_cast<std::size_t>(to)] - sums[static_cast<std::size_t>(from)];
    first[i * step] = static_cast<std::uint8_t>(sum / (2 * radius + 1));
  }
}

/// Three box filters after one another, which are close to a Gaussian.
void blur(QImage& alpha, int radius) {
  std::vector<int> sums;
  for (int pass = 0; pass < 3; ++pass) {
    for (int y = 0; y < alpha.height(); ++y) blurLine(alpha.scanLine(y), alpha.width(), 1, radius, sums);
    for (int x = 0; x < alpha.width(); ++x)
      blurLine(alpha.bits() + x, alpha.height(), alpha.bytesPerLine(), radius, sums);
  }
}

}  // namespace

PanelShadow shadowOf(const QImage& panel, double scale) {
  const int reach = static_cast<int>(std::ceil((blurRadius + drop) * scale));
  const QSize size = panel.size() + QSize(2 * reach, 2 * reach);
  QImage alpha(size, QImage::Format_Alpha8);
  alpha.fill(0);
  const QImage shape = panel.convertToFormat(QImage::Format_Alpha8);
  const int down = static_cast<int>(std::lround(drop * scale));
  for (int y = 0; y < shape.height(); ++y)
    for (int x = 0; x < shape.width(); ++x)
      alpha.scanLine(y + reach + down)[x + reach] =
          static_cast<std::uint8_t>(shape.constScanLine(y)[x] * darkness / 255);
  blur(alpha, std::max(1, static_cast<int>(blurRadius * scale / 3)));

  QImage picture(size, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x)
      reinterpret_cast<QRgb*>(picture.scanLine(y))[x] = qRgba(0, 0, 0, alpha.constScanLine(y)[x]);
  QPainter painter(&picture);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  painter.drawImage(reach, reach, shape);
  painter.end();
  return {std::move(picture), reach};
}

}  // namespace lumiscan::desktop
