#include "platform/linux/recognition/Columns.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

/// Whether the letters stand at one distance or multiples of it, as code does, which is rarely set in
/// columns.
bool isMonospaced(const std::vector<TextLine>& lines) {
  std::vector<int> distances;  // Between the middles of neighbours, doubled.
  for (const TextLine& line : lines)
    for (std::size_t i = 1; i < line.glyphs.size(); ++i) {
      const PixelBox& left = line.glyphs[i - 1].box;
      const PixelBox& right = line.glyphs[i].box;
      if (right.left > left.right) distances.push_back(right.left + right.right - left.left - left.right);
    }
  if (distances.empty()) return false;
  const double pitch = levelAt(distances, 0.5);
  const auto regular = std::count_if(distances.begin(), distances.end(), [&](int distance) {
    const double steps = distance / pitch;
    return steps > 0.5 && std::abs(steps - std::round(steps)) < 0.13;
  });
  return 10 * static_cast<std::size_t>(regular) >= 7 * distances.size();
}

/// The words of all lines. How wide a space is depends on the font: about what the widest tenth of the gaps
/// is.
std::size_t wordCount(const std::vector<TextLine>& lines, int usual) {
  std::vector<int> gaps;
  for (const TextLine& line : lines)
    for (const Gutter& gap : gutters(line.glyphs, 0)) gaps.push_back(gap.width);
  if (gaps.empty()) return lines.size();
  const int space = std::max(usual * 7 / 20, levelAt(gaps, 0.9) * 3 / 5);
  const auto spaces = std::count_if(gaps.begin(), gaps.end(), [&](int width) { return width >= space; });
  return lines.size() + static_cast<std::size_t>(spaces);
}

/// The lines cut at the gutters, part by part.
std::vector<std::vector<TextLine>> partsOf(const std::vector<TextLine>& lines,
                                           const std::vector<Gutter>& cuts) {
  std::vector<std::vector<TextLine>> parts(cuts.size() + 1);
  for (const TextLine& line : lines) {
    std::vector<std::vector<Glyph>> glyphs(parts.size());
    for (const Glyph& glyph : line.glyphs) {
      const auto before = [&](const Gutter& gutter) { return gutter.end <= glyph.box.left; };
      glyphs[static_cast<std::size_t>(std::count_if(cuts.begin(), cuts.end(), before))].push_back(glyph);
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (glyphs[i].empty()) continue;
      const PixelBox box = boxAround(glyphs[i]);
      parts[i].push_back({std::move(glyphs[i]), box, line.letterHeight, line.baseline});
    }
  }
  return parts;
}

/// Running text has several words a line and fills its column's width; the cells of a table and the items of
/// a menu don't. All of several columns must be such.
bool isRunningText(const std::vector<TextLine>& lines, int usual) {
  std::vector<Glyph> glyphs;
  for (const TextLine& line : lines) glyphs.insert(glyphs.end(), line.glyphs.begin(), line.glyphs.end());
  const std::vector<Gutter> cuts = gutters(glyphs, 2 * usual);
  if (!cuts.empty()) {
    const std::vector<std::vector<TextLine>> parts = partsOf(lines, cuts);
    return std::all_of(parts.begin(), parts.end(),
                       [&](const std::vector<TextLine>& part) { return isRunningText(part, usual); });
  }
  std::vector<int> widths;
  for (const TextLine& line : lines) widths.push_back(line.box.right - line.box.left);
  const int widest = *std::max_element(widths.begin(), widths.end());
  return !isMonospaced(lines) && 10 * wordCount(lines, usual) >= 22 * lines.size() && widest > 12 * usual &&
         levelAt(widths, 0.7) * 10 >= widest * 6;
}

/// Whether all lines begin with one word of two signs, as the comments behind lines of code do. Those of a
/// list begin with a digit and a point.
bool beginAlike(const std::vector<TextLine>& lines, int usual) {
  const auto isAlike = [](const Glyph& a, const Glyph& b) {
    return std::abs(a.width() - b.width()) <= 1 && std::abs(a.height() - b.height()) <= 1;
  };
  const std::vector<Glyph>& first = lines.front().glyphs;
  return std::all_of(lines.begin(), lines.end(), [&](const TextLine& line) {
    const std::vector<Glyph>& glyphs = line.glyphs;
    return glyphs.size() > 2 && 3 * glyphs[1].height() > usual && isAlike(glyphs[0], first[0]) &&
           isAlike(glyphs[1], first[1]) && 2 * (glyphs[2].box.left - glyphs[1].box.right) > usual;
  });
}

}  // namespace

std::vector<Gutter> gutters(const std::vector<Glyph>& glyphs, int least) {
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

bool areColumns(const std::vector<TextLine>& left, const std::vector<TextLine>& right, const Gutter& gutter,
                int usual) {
  constexpr std::size_t fewest = 3;
  if (left.size() < fewest || right.size() < fewest) return false;
  const auto paired = [](const TextLine& line, const std::vector<TextLine>& others) {
    return std::any_of(others.begin(), others.end(), [&](const TextLine& other) {
      const int top = std::max(line.box.top, other.box.top);
      const int bottom = std::min(line.box.bottom, other.box.bottom);
      const int lower = std::min(line.box.bottom - line.box.top, other.box.bottom - other.box.top);
      return 4 * (bottom - top) >= 3 * lower;
    });
  };
  std::size_t pairs = 0;
  for (const TextLine& line : left) pairs += paired(line, right);
  if (pairs * 10 < std::min(left.size(), right.size()) * 7) return true;
  if (2 * gutter.width < 5 * usual) return false;
  return !beginAlike(right, usual) && isRunningText(left, usual) && isRunningText(right, usual);
}

}  // namespace lumiscan::desktop
