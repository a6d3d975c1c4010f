#include "platform/linux/recognition/Rows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <tuple>
#include <utility>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

template <typename Measure>
int medianOf(const Glyphs& glyphs, Measure measure) {
  std::vector<int> values;
  for (const Glyph& glyph : glyphs) values.push_back(measure(glyph));
  return levelAt(std::move(values), 0.5);
}

Row rowOf(const Glyph& letter) { return {{letter}, letter.box.top, letter.box.bottom}; }

void settle(Row& row) {
  row.top = medianOf(row.glyphs, [](const Glyph& glyph) { return glyph.box.top; });
  row.bottom = medianOf(row.glyphs, [](const Glyph& glyph) { return glyph.box.bottom; });
}

void addLetter(Row& row, const Glyph& letter) {
  row.glyphs.push_back(letter);
  settle(row);
}

int overlap(const Row& row, const Glyph& glyph) {
  return std::min(row.bottom, glyph.box.bottom) - std::max(row.top, glyph.box.top) + 1;
}

int distance(const Row& row, const Glyph& glyph) {
  return std::max({0, row.top - glyph.box.bottom, glyph.box.top - row.bottom});
}

int middle(const Row& row) { return (row.top + row.bottom) / 2; }

/// Whether a glyph shares half of its height with a row, or of the row's.
bool sharesHeight(const Row& row, const Glyph& glyph) {
  return 2 * overlap(row, glyph) >= std::min(glyph.height(), row.bottom - row.top + 1);
}

/// The row with which a glyph shares most of its height; null where it is none's.
Row* homeOf(const Glyph& glyph, std::vector<Row>& rows) {
  Row* best = nullptr;
  for (Row& row : rows)
    if (sharesHeight(row, glyph) && (!best || overlap(row, glyph) > overlap(*best, glyph))) best = &row;
  return best;
}

void addLetters(std::vector<Row>& rows, const Glyphs& letters) {
  for (const Glyph& glyph : letters) {
    if (Row* const home = homeOf(glyph, rows))
      addLetter(*home, glyph);
    else
      rows.push_back(rowOf(glyph));
  }
}

/// Rows from what surely is letters, from left to right.
std::vector<Row> rowsOfLetters(const Glyphs& letters) {
  std::vector<Row> rows;
  addLetters(rows, letters);
  return rows;
}

/// Joins rows that a star at the start has parted: letters behind it that share enough with it to be in its
/// row, and others that don't. Half of a row's letters in the other's height make them one.
void joinPartedRows(std::vector<Row>& rows) {
  const auto isPart = [](const Row& a, const Row& b) {
    const Row& few = a.glyphs.size() < b.glyphs.size() ? a : b;
    const Row& many = &few == &a ? b : a;
    const auto within = std::count_if(few.glyphs.begin(), few.glyphs.end(),
                                      [&](const Glyph& glyph) { return sharesHeight(many, glyph); });
    return 2 * static_cast<std::size_t>(within) >= few.glyphs.size();
  };
  for (std::size_t i = 1; i < rows.size();) {
    const auto end = rows.begin() + static_cast<std::ptrdiff_t>(i);
    const auto home =
        std::find_if(rows.begin(), end, [&](const Row& other) { return isPart(other, rows[i]); });
    if (home == end) {
      ++i;
      continue;
    }
    home->glyphs.insert(home->glyphs.end(), end->glyphs.begin(), end->glyphs.end());
    settle(*home);
    rows.erase(end);
  }
}

/// Small letters, or large marks: where they stand in a row of larger ones, they say nothing about it. Others
/// have rows of their own, which are added.
void addSmallLetters(std::vector<Row>& rows, const Glyphs& letters) {
  Glyphs others;
  for (const Glyph& glyph : letters) {
    if (Row* const home = homeOf(glyph, rows))
      home->glyphs.push_back(glyph);
    else
      others.push_back(glyph);
  }
  std::vector<Row> more = rowsOfLetters(others);
  std::move(more.begin(), more.end(), std::back_inserter(rows));
}

/// Commas and stars may be as high as a small letter, and stand so low or high that they share little of its
/// height with the row. Real lines don't reach into each other's letters.
void joinRowsOfMarks(std::vector<Row>& rows, int usual) {
  // Letters that touch are one glyph.
  const auto inkWidth = [](const Row& row) {
    return std::accumulate(row.glyphs.begin(), row.glyphs.end(), 0,
                           [](int sum, const Glyph& glyph) { return sum + glyph.width(); });
  };
  for (auto row = rows.begin(); row != rows.end();) {
    const bool low = std::all_of(row->glyphs.begin(), row->glyphs.end(), [usual](const Glyph& glyph) {
      return glyph.height() <= usual && 2 * glyph.width() <= 3 * glyph.height();
    });
    const auto home = std::find_if(rows.begin(), rows.end(), [&](const Row& other) {
      return &other != &*row && inkWidth(other) > inkWidth(*row) && other.top <= row->bottom &&
             other.bottom >= row->top;
    });
    if (!low || home == rows.end()) {
      ++row;
      continue;
    }
    home->glyphs.insert(home->glyphs.end(), row->glyphs.begin(), row->glyphs.end());
    row = rows.erase(row);
  }
}

bool isFlat(const Glyph& glyph) { return glyph.width() >= 3 * glyph.height(); }

/// Whether a mark is so near to a row that it may be the row's. Accents and quotation marks stand well above
/// small letters, but nothing far below them but strokes.
bool isWithinReach(const Row& row, const Glyph& mark, int reach) {
  const bool isLow = mark.box.top > row.bottom && !isFlat(mark);
  return distance(row, mark) <= (isLow ? reach / 2 : reach);
}

/// How far a mark is from a row. Flat strokes stand below their row, as underscores do, or in it.
int markDistance(const Row& row, const Glyph& mark, int usual) {
  return distance(row, mark) + (isFlat(mark) && mark.box.bottom < row.top ? usual / 2 : 0);
}

/// Whether one glyph stands over another, nearer than a letter is high.
bool areStacked(const Glyph& a, const Glyph& b, int usual) {
  const int gap = std::max(a.box.top - b.box.bottom, b.box.top - a.box.bottom) - 1;
  return a.box.left <= b.box.right && b.box.left <= a.box.right && gap >= 0 && gap < usual;
}

/// Dots, accents, quotation marks, strokes: each to the row that is nearest, if it is within reach. Returns
/// the others, of which some may be parts of one mark.
Glyphs addMarks(std::vector<Row>& rows, const Glyphs& marks, int usual, int reach) {
  struct Near {
    Row* row;
    const Glyph* mark;
  };
  std::vector<Near> near;
  Glyphs apart;
  for (const Glyph& mark : marks) {
    const auto nearest = std::min_element(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
      const auto order = [&](const Row& row) {
        return std::tuple(!isWithinReach(row, mark, reach), markDistance(row, mark, usual),
                          std::abs(middle(row) - mark.middle()));
      };
      return order(a) < order(b);
    });
    if (nearest == rows.end()) return marks;
    if (isWithinReach(*nearest, mark, reach))
      near.push_back({&*nearest, &mark});
    else
      apart.push_back(mark);
  }
  // The comma of a semicolon may be near the next line.
  const Glyphs alone = apart;
  for (const auto& [row, mark] : near) {
    const bool isPart = distance(*row, *mark) > 0 &&
                        std::any_of(alone.begin(), alone.end(), [&, m = mark](const Glyph& other) {
                          return areStacked(other, *m, usual);
                        });
    if (isPart)
      apart.push_back(*mark);
    else
      row->glyphs.push_back(*mark);
  }
  return apart;
}

/// Joins rows of nothing but marks that are the upper and lower parts of some: of colons and semicolons.
void joinPartsOfMarks(std::vector<Row>& rows, int usual) {
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.top < b.top; });
  for (std::size_t i = 1; i < rows.size();) {
    Row& above = rows[i - 1];
    const Row& below = rows[i];
    const bool isOver = std::all_of(below.glyphs.begin(), below.glyphs.end(), [&](const Glyph& glyph) {
      return std::any_of(above.glyphs.begin(), above.glyphs.end(), [&](const Glyph& other) {
        return other.box.left <= glyph.box.right && other.box.right >= glyph.box.left;
      });
    });
    if (isOver && below.top - above.bottom <= usual) {
      above.glyphs.insert(above.glyphs.end(), below.glyphs.begin(), below.glyphs.end());
      above.bottom = below.bottom;
      rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      ++i;
    }
  }
}

}  // namespace

std::vector<Row> rowsOf(const Glyphs& glyphs, int usual, Characters characters) {
  Glyphs letters, smallLetters, marks;
  for (const Glyph& glyph : glyphs) {
    if (5 * glyph.height() >= 4 * usual)
      letters.push_back(glyph);
    else if (characters == Characters::alphabetic && 3 * glyph.height() >= 2 * usual)
      smallLetters.push_back(glyph);
    else
      marks.push_back(glyph);
  }
  // Large quotation marks would begin a row of their own that takes the letters behind them.
  const auto low = std::stable_partition(letters.begin(), letters.end(), [usual](const Glyph& glyph) {
    return 10 * glyph.height() >= 9 * usual;
  });
  std::vector<Row> rows = rowsOfLetters({letters.begin(), low});
  addLetters(rows, {low, letters.end()});
  joinPartedRows(rows);
  if (characters == Characters::alphabetic) {
    addSmallLetters(rows, smallLetters);
    joinRowsOfMarks(rows, usual);
    // Lines of nothing but marks.
    std::vector<Row> more = rowsOfLetters(addMarks(rows, marks, usual, usual));
    joinPartsOfMarks(more, usual);
    std::move(more.begin(), more.end(), std::back_inserter(rows));
    return rows;
  }
  // Among wide characters may be lines of an alphabet, whose letters are low beside them.
  Glyphs lowLetters, accents;
  for (const Glyph& glyph : addMarks(rows, marks, usual, usual / 4))
    (5 * glyph.height() >= 2 * usual ? lowLetters : accents).push_back(glyph);
  std::vector<Row> more = rowsOfLetters(lowLetters);
  std::move(more.begin(), more.end(), std::back_inserter(rows));
  more = rowsOfLetters(addMarks(rows, accents, usual, usual));
  std::move(more.begin(), more.end(), std::back_inserter(rows));
  return rows;
}

}  // namespace lumiscan::desktop
