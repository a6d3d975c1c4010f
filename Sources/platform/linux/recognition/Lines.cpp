#include "platform/linux/recognition/Lines.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <tuple>
#include <utility>

#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/Rows.h"

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

/// Half the letters of an alphabet have the usual height. Few pieces of a character of many strokes are as
/// high as the character.
double usualShare(Characters characters) { return characters == Characters::alphabetic ? 0.5 : 0.8; }

/// The glyphs but for short strokes in pairs, if there are enough others. They are quotation marks, of which
/// some lines of code have more than of letters.
Glyphs withoutQuotationMarks(Glyphs glyphs) {
  const auto arePair = [](const Glyph& a, const Glyph& b) {
    const int gap = b.box.left - a.box.right;
    return a.box.top == b.box.top && a.box.bottom == b.box.bottom && 2 * a.height() >= 3 * a.width() &&
           2 * b.height() >= 3 * b.width() && gap > 0 && 2 * gap <= a.height();
  };
  std::sort(glyphs.begin(), glyphs.end(), [](const Glyph& a, const Glyph& b) {
    return std::tie(a.box.top, a.box.bottom, a.box.left) < std::tie(b.box.top, b.box.bottom, b.box.left);
  });
  Glyphs pairs, others;
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    const bool isSecond = i > 0 && arePair(glyphs[i - 1], glyphs[i]);
    const bool isFirst = i + 1 < glyphs.size() && arePair(glyphs[i], glyphs[i + 1]);
    (isFirst || isSecond ? pairs : others).push_back(glyphs[i]);
  }
  if (4 * others.size() < glyphs.size()) return glyphs;
  std::vector<int> heights;
  for (const Glyph& glyph : others) heights.push_back(glyph.height());
  const int high = levelAt(std::move(heights), 0.75);
  std::copy_if(pairs.begin(), pairs.end(), std::back_inserter(others),
               [&](const Glyph& glyph) { return 3 * glyph.height() > 2 * high; });
  return others;
}

/// Whether a line is of short upright strokes alone, as those that open and close a longer text are: they
/// stand high, and what they stand over isn't there to tell.
bool areQuotationMarks(const Glyphs& glyphs, int usual) {
  const auto isShort = [&](const Glyph& glyph) {
    return glyph.height() >= 3 && 5 * glyph.height() < 4 * usual && glyph.height() >= glyph.width();
  };
  // The others are two that touch.
  const auto strokes = std::count_if(glyphs.begin(), glyphs.end(), [](const Glyph& glyph) {
    return 10 * glyph.height() >= 13 * glyph.width();
  });
  return std::all_of(glyphs.begin(), glyphs.end(), isShort) &&
         2 * static_cast<std::size_t>(strokes) >= glyphs.size();
}

/// `usual` is the usual height of the letters, `ofCharacters` that of all characters.
std::vector<TextLine> linesOfRows(Glyphs glyphs, Characters characters, int usual, int ofCharacters) {
  std::sort(glyphs.begin(), glyphs.end(),
            [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
  std::vector<Row> rows = rowsOf(glyphs, std::max(1, ofCharacters), characters);
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.top < b.top; });
  std::vector<TextLine> lines;
  for (Row& row : rows) {
    std::stable_sort(row.glyphs.begin(), row.glyphs.end(),
                     [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
    const int height = usualHeight(row.glyphs);
    const int tallest =
        std::max_element(row.glyphs.begin(), row.glyphs.end(), [](const Glyph& a, const Glyph& b) {
          return a.height() < b.height();
        })->height();
    // A short line says little about its own letters: most of it may be dots and commas.
    const bool hasLetter = 5 * tallest >= 4 * usual;
    const bool hasMarksAlone = 5 * tallest <= 3 * usual;
    const bool alone = row.glyphs.size() < 6 && height < 2 * usual && (hasLetter || hasMarksAlone);
    const PixelBox box = boxAround(row.glyphs);
    if (areQuotationMarks(row.glyphs, usual))
      lines.push_back({std::move(row.glyphs), box, usual, box.top + usual * 5 / 4});
    else
      lines.push_back({std::move(row.glyphs), box, alone || height == 0 ? usual : height, row.bottom + 1});
  }
  return lines;
}

}  // namespace

int usualHeight(const Glyphs& all, Characters characters) {
  const Glyphs glyphs = withoutQuotationMarks(all);
  const auto usual = [&](int leastHeight, int mostWidth) {
    std::vector<int> heights;
    for (const Glyph& glyph : glyphs)
      if (glyph.height() >= leastHeight && glyph.width() <= mostWidth * glyph.height())
        heights.push_back(glyph.height());
    return heights.empty() ? 0 : levelAt(std::move(heights), usualShare(characters));
  };
  const int ofLetters = usual(4, 4);
  return ofLetters > 0 ? ofLetters : usual(6, 16);
}

std::vector<TextLine> linesOf(const Glyphs& glyphs, Characters characters) {
  if (glyphs.empty()) return {};
  return linesOfRows(glyphs, characters, std::max(1, usualHeight(glyphs)), usualHeight(glyphs, characters));
}

std::vector<TextLine> linesOf(const Glyphs& glyphs, int usual) {
  return linesOfRows(glyphs, Characters::alphabetic, usual, usual);
}

}  // namespace lumiscan::desktop
