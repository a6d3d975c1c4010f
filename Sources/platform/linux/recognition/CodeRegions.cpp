#include "platform/linux/recognition/CodeRegions.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace lumiscan::desktop {

namespace {

/// The luminances of some pixels.
struct Levels {
  int darkest = 255;
  int lightest = 0;
  int sum = 0;
  int count = 0;

  void add(const Levels& other) {
    darkest = std::min(darkest, other.darkest);
    lightest = std::max(lightest, other.lightest);
    sum += other.sum;
    count += other.count;
  }

  int contrast() const { return lightest - darkest; }
};

constexpr int leastContrast = 48;  // Of a code.

/// Whether about as much is dark as light between two levels: of text at most a quarter is ink. `least` in
/// percent, of either.
bool areBalanced(const Levels& levels, int darkest, int lightest, int least) {
  const int lightShare = 100 * (levels.sum / levels.count - darkest) / (lightest - darkest);
  return lightShare >= least && lightShare <= 100 - least;
}

/// `count` pixels, each `step` after the one before.
Levels levelsOf(const std::uint8_t* pixels, int count, std::ptrdiff_t step = 1) {
  Levels levels;
  for (int i = 0; i < count; ++i, pixels += step) {
    levels.darkest = std::min<int>(levels.darkest, *pixels);
    levels.lightest = std::max<int>(levels.lightest, *pixels);
    levels.sum += *pixels;
  }
  levels.count = count;
  return levels;
}

bool isBalanced(const Levels& levels, int least) {
  return levels.contrast() >= leastContrast && areBalanced(levels, levels.darkest, levels.lightest, least);
}

/// A row or a column of pixels.
struct Strip {
  Levels levels;
  int changes = 0;  ///< How often dark and light alternate.
};

bool isPlain(const Levels& levels) { return levels.contrast() < leastContrast / 2; }

/// A part of the image without the ground around it, row by row and column by column.
class Strips {
 public:
  Strips(const GreyBitmap& image, PixelBox box) : image_(image), box_(box) {
    while (box_.top < box_.bottom && isPlain(rowAt(box_.top))) ++box_.top;
    while (box_.top < box_.bottom && isPlain(rowAt(box_.bottom))) --box_.bottom;
    while (box_.left < box_.right && isPlain(columnAt(box_.left))) ++box_.left;
    while (box_.left < box_.right && isPlain(columnAt(box_.right))) --box_.right;
    for (int y = box_.top; y <= box_.bottom; ++y) rows_.push_back({rowAt(y)});
    for (int x = box_.left; x <= box_.right; ++x) columns_.push_back({columnAt(x)});
    for (const Strip& row : rows_) all_.add(row.levels);
    for (int y = box_.top; y <= box_.bottom; ++y)
      rows_[static_cast<std::size_t>(y - box_.top)].changes = changes(pixelAt(box_.left, y), box_.width(), 1);
    for (int x = box_.left; x <= box_.right; ++x)
      columns_[static_cast<std::size_t>(x - box_.left)].changes =
          changes(pixelAt(x, box_.top), box_.height(), image_.width);
  }

  bool mayBeCode() const {
    if (all_.contrast() < leastContrast || !(areEven(rows_) || areEven(columns_))) return false;
    const int across = most(rows_);
    const int down = most(columns_);
    // The smallest matrix has ten modules a side, the shortest linear code some fifty.
    constexpr int leastOfMatrix = 7;
    constexpr int leastOfBars = 18;
    constexpr int longestToShortest = 4;
    const auto [shorter, longer] = std::minmax({box_.width(), box_.height()});
    if (std::min(across, down) >= leastOfMatrix && longer <= longestToShortest * shorter) return true;
    return std::max(across, down) >= leastOfBars && areStripes();
  }

 private:
  const std::uint8_t* pixelAt(int x, int y) const {
    return &image_.pixels[0] + static_cast<std::ptrdiff_t>(y) * image_.width + x;
  }
  Levels rowAt(int y) const { return levelsOf(pixelAt(box_.left, y), box_.width()); }
  Levels columnAt(int x) const { return levelsOf(pixelAt(x, box_.top), box_.height(), image_.width); }
  int changes(const std::uint8_t* pixels, int count, std::ptrdiff_t step) const {
    const int margin = all_.contrast() / 8;
    const int middle = (all_.darkest + all_.lightest) / 2;
    int side = 0;
    int number = -1;
    for (int i = 0; i < count; ++i, pixels += step) {
      const int now = *pixels > middle + margin ? 1 : *pixels < middle - margin ? -1 : side;
      number += now != side;
      side = now;
    }
    return number;
  }

  static int most(const std::vector<Strip>& strips) {
    const auto fewer = [](const Strip& a, const Strip& b) { return a.changes < b.changes; };
    return std::max_element(strips.begin(), strips.end(), fewer)->changes;
  }

  /// Whether most strips hold about as much dark as light. The rows of a line of text hold much ink at half
  /// its height and little elsewhere, and its columns as the letters have it.
  bool areEven(const std::vector<Strip>& strips) const {
    const auto even = std::count_if(strips.begin(), strips.end(), [&](const Strip& strip) {
      constexpr int least = 24;
      return areBalanced(strip.levels, all_.darkest, all_.lightest, least);
    });
    constexpr double leastEven = 0.6;
    return static_cast<double>(even) >= leastEven * static_cast<double>(strips.size());
  }

  /// Whether dark and light change mostly in one direction, as in bars, also stacked and tilted ones.
  bool areStripes() const {
    const auto sum = [](const std::vector<Strip>& strips) {
      return std::accumulate(strips.begin(), strips.end(), 0,
                             [](int total, const Strip& strip) { return total + strip.changes; });
    };
    const auto [fewer, more] = std::minmax({sum(rows_), sum(columns_)});
    return 2 * fewer <= more;
  }

  const GreyBitmap& image_;
  PixelBox box_;
  std::vector<Strip> rows_;
  std::vector<Strip> columns_;
  Levels all_;
};

/// The image in square cells. Codes whose margin is narrower than a cell fall into one group, and modules
/// much larger than one are no balance.
struct CellGrid {
  int cellSize;  ///< In pixels.
  int columns, rows;
  std::vector<Levels> cells;

  CellGrid(int size, int width, int height)
      : cellSize(size),
        columns((width + size - 1) / size),
        rows((height + size - 1) / size),
        cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

  Levels& at(int column, int row) { return cells[index(column, row)]; }
  const Levels& at(int column, int row) const { return cells[index(column, row)]; }

  Levels around(int column, int row) const {
    Levels levels;
    for (int y = std::max(0, row - 1); y <= std::min(rows - 1, row + 1); ++y)
      for (int x = std::max(0, column - 1); x <= std::min(columns - 1, column + 1); ++x) levels.add(at(x, y));
    return levels;
  }

 private:
  std::size_t index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
           static_cast<std::size_t>(column);
  }
};

CellGrid gridOf(const GreyBitmap& image, int cellSize) {
  CellGrid grid(cellSize, image.width, image.height);
  for (int y = 0; y < image.height; ++y)
    for (int column = 0; column < grid.columns; ++column) {
      const int left = column * cellSize;
      grid.at(column, y / cellSize)
          .add(levelsOf(&image.pixels[0] + static_cast<std::ptrdiff_t>(y) * image.width + left,
                        std::min(cellSize, image.width - left)));
    }
  return grid;
}

/// Each `factor` by `factor` cells as one.
CellGrid coarser(const CellGrid& fine, int factor) {
  CellGrid grid(fine.cellSize * factor, fine.columns * fine.cellSize, fine.rows * fine.cellSize);
  for (int row = 0; row < fine.rows; ++row)
    for (int column = 0; column < fine.columns; ++column)
      grid.at(column / factor, row / factor).add(fine.at(column, row));
  return grid;
}

/// The image in square cells: which of them lie among about as many dark as light pixels.
class BalancedCells {
 public:
  /// `least` in percent: how much must be dark, and how much light.
  BalancedCells(const CellGrid& grid, int least)
      : columns_(grid.columns), rows_(grid.rows), balanced_(grid.cells.size()) {
    for (int row = 0; row < rows_; ++row)
      for (int column = 0; column < columns_; ++column)
        balanced_[index(column, row)] = isBalanced(grid.around(column, row), least);
  }

  /// The box, in cells, around each group of balanced neighbours.
  std::vector<PixelBox> groups() {
    std::vector<PixelBox> boxes;
    for (int row = 0; row < rows_; ++row)
      for (int column = 0; column < columns_; ++column)
        if (balanced_[index(column, row)]) boxes.push_back(takeGroup(column, row));
    return boxes;
  }

 private:
  std::size_t index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  PixelBox takeGroup(int startColumn, int startRow) {
    PixelBox box{startColumn, startRow, startColumn, startRow};
    std::vector<std::pair<int, int>> waiting{{startColumn, startRow}};
    balanced_[index(startColumn, startRow)] = false;
    while (!waiting.empty()) {
      const auto [column, row] = waiting.back();
      waiting.pop_back();
      box = {std::min(box.left, column), std::min(box.top, row), std::max(box.right, column),
             std::max(box.bottom, row)};
      for (int y = std::max(0, row - 1); y <= std::min(rows_ - 1, row + 1); ++y)
        for (int x = std::max(0, column - 1); x <= std::min(columns_ - 1, column + 1); ++x) {
          if (!balanced_[index(x, y)]) continue;
          balanced_[index(x, y)] = false;
          waiting.emplace_back(x, y);
        }
    }
    return box;
  }

  int columns_;
  int rows_;
  std::vector<bool> balanced_;
};

/// The box with each side moved outwards to where the ground shows, if that is at most `most` pixels away.
PixelBox grown(const GreyBitmap& image, const PixelBox& box, int most) {
  const auto rowAt = [&](int y) {
    return levelsOf(&image.pixels[0] + static_cast<std::ptrdiff_t>(y) * image.width + box.left, box.width());
  };
  const auto columnAt = [&](int x) {
    return levelsOf(&image.pixels[0] + static_cast<std::ptrdiff_t>(box.top) * image.width + x, box.height(),
                    image.width);
  };
  const auto moved = [&](int side, int step, int end, const auto& stripAt) {
    for (int i = 0, at = side; i <= most && at != end; ++i, at += step)
      if (isPlain(stripAt(at))) return at;
    return side;
  };
  return {moved(box.left, -1, -1, columnAt), moved(box.top, -1, -1, rowAt),
          moved(box.right, 1, image.width, columnAt), moved(box.bottom, 1, image.height, rowAt)};
}

}  // namespace

std::vector<PixelBox> regionsOfInterest(const GreyBitmap& image) {
  constexpr int smallestSide = 10;  // Pixels.
  std::vector<PixelBox> regions;
  const auto addGroups = [&](const CellGrid& grid, int least) {
    const int size = grid.cellSize;
    for (const PixelBox& cells : BalancedCells(grid, least).groups()) {
      PixelBox box{std::max(0, (cells.left - 1) * size), std::max(0, (cells.top - 1) * size),
                   std::min(image.width, (cells.right + 2) * size) - 1,
                   std::min(image.height, (cells.bottom + 2) * size) - 1};
      box = grown(image, box, 2 * size);
      if (std::min(box.width(), box.height()) >= smallestSide && Strips(image, box).mayBeCode())
        regions.push_back(box);
    }
  };
  // Among the cells of a small code are some of its ground; close to text only its very middle stands out.
  const CellGrid fine = gridOf(image, 4);
  addGroups(fine, 28);
  const CellGrid middle = coarser(fine, 2);
  addGroups(middle, 20);
  addGroups(middle, 30);
  addGroups(coarser(middle, 3), 24);
  const auto order = [](const PixelBox& box) {
    return std::tuple(box.area(), box.top, box.left, box.width());
  };
  std::sort(regions.begin(), regions.end(),
            [&](const PixelBox& a, const PixelBox& b) { return order(a) < order(b); });
  regions.erase(std::unique(regions.begin(), regions.end()), regions.end());
  return regions;
}

}  // namespace lumiscan::desktop
