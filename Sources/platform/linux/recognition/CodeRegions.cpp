#include "platform/linux/recognition/CodeRegions.h"

#include <algorithm>
#include <utility>

namespace lumiscan::desktop {

namespace {

constexpr int cellSize = 8;  // Pixels; codes whose margin is narrower fall into one region.

/// The image in square cells: which of them hold both dark and light pixels.
class ContrastCells {
 public:
  explicit ContrastCells(const GreyBitmap& image)
      : columns_((image.width + cellSize - 1) / cellSize),
        rows_((image.height + cellSize - 1) / cellSize),
        busy_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
    for (int row = 0; row < rows_; ++row)
      for (int column = 0; column < columns_; ++column)
        busy_[index(column, row)] = hasContrast(image, column, row);
  }

  /// The box, in cells, around each group of busy neighbours.
  std::vector<PixelBox> groups() {
    std::vector<PixelBox> boxes;
    for (int row = 0; row < rows_; ++row)
      for (int column = 0; column < columns_; ++column)
        if (busy_[index(column, row)]) boxes.push_back(takeGroup(column, row));
    return boxes;
  }

 private:
  std::size_t index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  static bool hasContrast(const GreyBitmap& image, int column, int row) {
    constexpr int least = 64;
    std::uint8_t darkest = 255;
    std::uint8_t lightest = 0;
    const int bottom = std::min(image.height, (row + 1) * cellSize);
    const int right = std::min(image.width, (column + 1) * cellSize);
    for (int y = row * cellSize; y < bottom; ++y)
      for (int x = column * cellSize; x < right; ++x) {
        darkest = std::min(darkest, image.at(x, y));
        lightest = std::max(lightest, image.at(x, y));
      }
    return lightest - darkest >= least;
  }

  PixelBox takeGroup(int startColumn, int startRow) {
    PixelBox box{startColumn, startRow, startColumn, startRow};
    std::vector<std::pair<int, int>> waiting{{startColumn, startRow}};
    busy_[index(startColumn, startRow)] = false;
    while (!waiting.empty()) {
      const auto [column, row] = waiting.back();
      waiting.pop_back();
      box = {std::min(box.left, column), std::min(box.top, row), std::max(box.right, column),
             std::max(box.bottom, row)};
      for (int y = std::max(0, row - 1); y <= std::min(rows_ - 1, row + 1); ++y)
        for (int x = std::max(0, column - 1); x <= std::min(columns_ - 1, column + 1); ++x) {
          if (!busy_[index(x, y)]) continue;
          busy_[index(x, y)] = false;
          waiting.emplace_back(x, y);
        }
    }
    return box;
  }

  int columns_;
  int rows_;
  std::vector<bool> busy_;
};

/// Two neighbours that a pixel lies between after enlargement, and the share of the second one in it, out of
/// twice the factor: pixel centres then fall on whole numbers.
struct Blend {
  int first, second, share;
};

std::vector<Blend> blends(int size, int factor) {
  std::vector<Blend> result;
  for (int i = 0; i < size * factor; ++i) {
    const int position = std::clamp(2 * i + 1 - factor, 0, (size - 1) * 2 * factor);
    const int first = position / (2 * factor);
    result.push_back({first, std::min(first + 1, size - 1), position % (2 * factor)});
  }
  return result;
}

}  // namespace

std::vector<PixelBox> regionsOfInterest(const GreyBitmap& image) {
  constexpr int smallestSide = 10;  // Pixels.
  constexpr int longestToShortest = 6;
  constexpr std::size_t mostRegions = 32;
  std::vector<PixelBox> regions;
  for (const PixelBox& cells : ContrastCells(image).groups()) {
    const PixelBox box{std::max(0, (cells.left - 1) * cellSize), std::max(0, (cells.top - 1) * cellSize),
                       std::min(image.width, (cells.right + 2) * cellSize) - 1,
                       std::min(image.height, (cells.bottom + 2) * cellSize) - 1};
    const auto [shorter, longer] = std::minmax({box.right - box.left + 1, box.bottom - box.top + 1});
    if (shorter >= smallestSide && longer <= longestToShortest * shorter) regions.push_back(box);
  }
  std::stable_sort(regions.begin(), regions.end(), [](const PixelBox& a, const PixelBox& b) {
    const auto area = [](const PixelBox& box) { return (box.right - box.left) * (box.bottom - box.top); };
    return area(a) > area(b);
  });
  if (regions.size() > mostRegions) regions.erase(regions.begin() + mostRegions, regions.end());
  return regions;
}

GreyBitmap enlargedPart(const GreyBitmap& image, const PixelBox& part, int factor, bool smooth) {
  const int width = part.right - part.left + 1;
  const int height = part.bottom - part.top + 1;
  GreyBitmap result(width * factor, height * factor, 0);
  if (!smooth) {
    for (int y = 0; y < result.height; ++y)
      for (int x = 0; x < result.width; ++x)
        result.at(x, y) = image.at(part.left + x / factor, part.top + y / factor);
    return result;
  }
  const std::vector<Blend> columns = blends(width, factor);
  const std::vector<Blend> rows = blends(height, factor);
  const int whole = 2 * factor;
  for (int y = 0; y < result.height; ++y) {
    const Blend& row = rows[static_cast<std::size_t>(y)];
    for (int x = 0; x < result.width; ++x) {
      const Blend& column = columns[static_cast<std::size_t>(x)];
      const auto across = [&](int inPart) {
        return image.at(part.left + column.first, part.top + inPart) * (whole - column.share) +
               image.at(part.left + column.second, part.top + inPart) * column.share;
      };
      const int sum = across(row.first) * (whole - row.share) + across(row.second) * row.share;
      result.at(x, y) = static_cast<std::uint8_t>(sum / (whole * whole));
    }
  }
  return result;
}

GreyBitmap withMargin(const GreyBitmap& image, int margin, std::uint8_t value) {
  GreyBitmap result(image.width + 2 * margin, image.height + 2 * margin, value);
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x) result.at(x + margin, y + margin) = image.at(x, y);
  return result;
}

}  // namespace lumiscan::desktop
