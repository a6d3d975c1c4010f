#include "platform/linux/recognition/TextLayout.h"

#include <leptonica/allheaders.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

int levelAt(std::vector<int> values, double share) {
  const auto nth = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + nth, values.end());
  return values[static_cast<std::size_t>(nth)];
}

template <typename Measure>
int medianOf(const Glyphs& glyphs, Measure measure) {
  std::vector<int> values;
  for (const Glyph& glyph : glyphs) values.push_back(measure(glyph));
  return levelAt(std::move(values), 0.5);
}

/// The ink from which a pixel counts as part of a glyph; nothing where no pixel is far from its ground.
std::optional<int> inkThreshold(const GreyBitmap& ink) {
  constexpr int faint = 16;
  std::vector<int> values;
  for (const std::uint8_t value : ink.pixels)
    if (value >= faint) values.push_back(value);
  if (values.empty()) return std::nullopt;
  return std::max(faint, levelAt(std::move(values), 0.95) * 2 / 5);
}

Glyphs connectedPieces(const GreyBitmap& ink, int threshold) {
  struct Destroy {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
    void operator()(Boxa* boxes) const { boxaDestroy(&boxes); }
  };
  const std::unique_ptr<Pix, Destroy> bits(pixCreate(ink.width, ink.height, 1));
  if (!bits) throw std::bad_alloc();
  for (int y = 0; y < ink.height; ++y) {
    l_uint32* const line = pixGetData(bits.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(bits.get());
    for (int x = 0; x < ink.width; ++x)
      if (ink.at(x, y) >= threshold) SET_DATA_BIT(line, x);
  }
  const std::unique_ptr<Boxa, Destroy> boxes(pixConnCompBB(bits.get(), 8));
  Glyphs glyphs;
  for (int i = 0; boxes && i < boxaGetCount(boxes.get()); ++i) {
    int x = 0, y = 0, width = 0, height = 0;
    boxaGetBoxGeometry(boxes.get(), i, &x, &y, &width, &height);
    glyphs.push_back({{x, y, x + width - 1, y + height - 1}});
  }
  return glyphs;
}

/// The usual height of the glyphs that may be letters.
int usualHeight(const Glyphs& glyphs) {
  std::vector<int> heights;
  for (const Glyph& glyph : glyphs)
    if (glyph.height() >= 4 && glyph.width() <= 4 * glyph.height()) heights.push_back(glyph.height());
  return heights.empty() ? 0 : levelAt(std::move(heights), 0.5);
}

bool isRuleOrFrame(const Glyph& glyph, int usual) {
  const bool horizontal = glyph.width() > 12 * usual && glyph.height() <= std::max(3, usual / 3);
  const bool vertical = glyph.height() > 3 * usual && glyph.width() <= std::max(3, usual / 3);
  const bool large = glyph.height() > 5 * usual;
  return horizontal || vertical || large;
}

PixelBox boxAround(const Glyphs& glyphs) {
  PixelBox box = glyphs.front().box;
  for (const Glyph& glyph : glyphs)
    box = {std::min(box.left, glyph.box.left), std::min(box.top, glyph.box.top),
           std::max(box.right, glyph.box.right), std::max(box.bottom, glyph.box.bottom)};
  return box;
}

/// A line while it is put together.
struct Row {
  Glyphs glyphs;
  int top, bottom;  // Of most of its letters.

  explicit Row(const Glyph& glyph) : glyphs{glyph}, top(glyph.box.top), bottom(glyph.box.bottom) {}

  void add(const Glyph& glyph) {
    glyphs.push_back(glyph);
    top = medianOf(glyphs, [](const Glyph& g) { return g.box.top; });
    bottom = medianOf(glyphs, [](const Glyph& g) { return g.box.bottom; });
  }
  int overlap(const Glyph& glyph) const {
    return std::min(bottom, glyph.box.bottom) - std::max(top, glyph.box.top) + 1;
  }
  int distance(const Glyph& glyph) const {
    return std::max({0, top - glyph.box.bottom, glyph.box.top - bottom});
  }
  int middle() const { return (top + bottom) / 2; }
};

/// Rows from what surely is letters, from left to right: each joins the row it shares most of its height
/// with.
std::vector<Row> rowsOfLetters(const Glyphs& letters) {
  std::vector<Row> rows;
  for (const Glyph& glyph : letters) {
    Row* best = nullptr;
    for (Row& row : rows)
      if (2 * row.overlap(glyph) >= std::min(glyph.height(), row.bottom - row.top + 1) &&
          (!best || row.overlap(glyph) > best->overlap(glyph)))
        best = &row;
    if (best)
      best->add(glyph);
    else
      rows.emplace_back(glyph);
  }
  return rows;
}

/// Dots, accents, quotation marks, strokes: each to the row that is nearest.
void addMarks(std::vector<Row>& rows, const Glyphs& marks, int usual) {
  const std::size_t letterRows = rows.size();
  for (const Glyph& mark : marks) {
    const auto end = rows.begin() + static_cast<std::ptrdiff_t>(letterRows > 0 ? letterRows : rows.size());
    const auto nearest = std::min_element(rows.begin(), end, [&](const Row& a, const Row& b) {
      return std::pair(a.distance(mark), std::abs(a.middle() - mark.middle())) <
             std::pair(b.distance(mark), std::abs(b.middle() - mark.middle()));
    });
    if (nearest != end && nearest->distance(mark) <= usual)
      nearest->glyphs.push_back(mark);
    else
      rows.emplace_back(mark);
  }
}

std::vector<TextLine> linesOf(Glyphs glyphs) {
  if (glyphs.empty()) return {};
  const int usual = std::max(1, usualHeight(glyphs));
  std::sort(glyphs.begin(), glyphs.end(),
            [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
  const auto isMark = [&](const Glyph& glyph) { return glyph.height() * 5 < usual * 4; };
  Glyphs letters, marks;
  for (const Glyph& glyph : glyphs) (isMark(glyph) ? marks : letters).push_back(glyph);
  std::vector<Row> rows = rowsOfLetters(letters);
  addMarks(rows, marks, usual);
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.top < b.top; });
  std::vector<TextLine> lines;
  for (Row& row : rows) {
    std::stable_sort(row.glyphs.begin(), row.glyphs.end(),
                     [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
    const int height = usualHeight(row.glyphs);
    // A short line says little about its own letters.
    const bool alone = row.glyphs.size() < 6 && height < 2 * usual && 2 * height > usual;
    const PixelBox box = boxAround(row.glyphs);
    lines.push_back({std::move(row.glyphs), box, alone || height == 0 ? usual : height, row.bottom + 1});
  }
  return lines;
}

/// A stretch along x that is free of glyphs.
struct Gutter {
  int width;
  int end;  // Where the glyphs to its right begin.
};

std::vector<Gutter> gutters(const Glyphs& glyphs, int least) {
  std::vector<PixelBox> boxes;
  for (const Glyph& glyph : glyphs) boxes.push_back(glyph.box);
  std::sort(boxes.begin(), boxes.end(), [](const PixelBox& a, const PixelBox& b) { return a.left < b.left; });
  std::vector<Gutter> found;
  int reached = boxes.front().right;
  for (const PixelBox& box : boxes) {
    if (box.left - reached > least) found.push_back({box.left - reached - 1, box.left});
    reached = std::max(reached, box.right);
  }
  return found;
}

/// Whether lines left and right of a gutter are those of columns, and not the cells of rows.
bool areColumns(const std::vector<TextLine>& left, const std::vector<TextLine>& right, const Gutter& gutter,
                int usual) {
  constexpr std::size_t fewest = 3;
  if (left.size() < fewest || right.size() < fewest) return false;
  const auto paired = [](const TextLine& line, const std::vector<TextLine>& others) {
    return std::any_of(others.begin(), others.end(), [&](const TextLine& other) {
      return std::abs(line.baseline - other.baseline) * 4 <= line.letterHeight;
    });
  };
  std::size_t pairs = 0;
  for (const TextLine& line : left) pairs += paired(line, right);
  if (pairs * 10 < std::min(left.size(), right.size()) * 7) return true;
  constexpr std::size_t fewestOfText = 4;
  if (gutter.width < 3 * usual || left.size() < fewestOfText || right.size() < fewestOfText) return false;
  // Running text fills its column's width; the cells of a table and the items of a menu don't.
  const auto isRunningText = [](const std::vector<TextLine>& lines) {
    std::vector<int> widths;
    for (const TextLine& line : lines) widths.push_back(line.box.right - line.box.left);
    const int widest = *std::max_element(widths.begin(), widths.end());
    return widest > 15 * lines.front().letterHeight && levelAt(widths, 0.4) * 10 >= widest * 8;
  };
  return isRunningText(left) && isRunningText(right);
}

/// The lines of the glyphs, parted into columns where there are some.
std::vector<TextLine> linesInReadingOrder(const Glyphs& glyphs) {
  if (glyphs.empty()) return {};
  const int usual = std::max(1, usualHeight(glyphs));
  for (const Gutter& gutter : gutters(glyphs, 2 * usual)) {
    Glyphs left, right;
    for (const Glyph& glyph : glyphs) (glyph.box.left < gutter.end ? left : right).push_back(glyph);
    if (!areColumns(linesOf(left), linesOf(right), gutter, usual)) continue;
    std::vector<TextLine> lines = linesInReadingOrder(left);
    std::vector<TextLine> more = linesInReadingOrder(right);
    std::move(more.begin(), more.end(), std::back_inserter(lines));
    return lines;
  }
  return linesOf(glyphs);
}

}  // namespace

std::vector<TextLine> findTextLines(const GreyBitmap& ink) {
  const std::optional<int> threshold = inkThreshold(ink);
  if (!threshold) return {};
  Glyphs glyphs = connectedPieces(ink, *threshold);
  const int usual = usualHeight(glyphs);
  if (usual == 0) return {};
  std::erase_if(glyphs, [&](const Glyph& glyph) { return isRuleOrFrame(glyph, usual); });
  return linesInReadingOrder(glyphs);
}

}  // namespace lumiscan::desktop
