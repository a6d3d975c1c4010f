#include "platform/linux/recognition/TextLayout.h"

#include <leptonica/allheaders.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/recognition/Columns.h"
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

/// The ink from which a pixel counts as part of a glyph; nothing where no pixel is far from its ground.
std::optional<int> inkThreshold(const GreyBitmap& ink) {
  constexpr int faint = 16;
  std::vector<int> values;
  for (const std::uint8_t value : ink.pixels)
    if (value >= faint) values.push_back(value);
  if (values.empty()) return std::nullopt;
  return std::max(faint, levelAt(std::move(values), 0.95) * 1 / 4);
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

/// Half the letters of an alphabet have the usual height. Few pieces of a character of many strokes are as
/// high as the character.
double usualShare(Characters characters) { return characters == Characters::alphabetic ? 0.5 : 0.8; }

/// The usual height of the glyphs that may be letters or, where none is narrow enough, words whose letters
/// touch.
int usualHeight(const Glyphs& glyphs, Characters characters = Characters::alphabetic) {
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

bool isInside(const PixelBox& inner, const PixelBox& outer) {
  return inner.left > outer.left && inner.right < outer.right && inner.top > outer.top &&
         inner.bottom < outer.bottom;
}

/// The usual height of what may be letters, of which there may be so few that a frame around them would count
/// for as much.
int usualHeightWithin(const Glyphs& glyphs, Characters characters) {
  constexpr std::size_t few = 16;
  if (glyphs.size() > few) return usualHeight(glyphs, characters);
  Glyphs unframed;
  std::copy_if(glyphs.begin(), glyphs.end(), std::back_inserter(unframed), [&](const Glyph& glyph) {
    return std::none_of(glyphs.begin(), glyphs.end(), [&](const Glyph& other) {
      return isInside(other.box, glyph.box) && 5 * other.height() >= glyph.height();
    });
  });
  return usualHeight(unframed, characters);
}

/// Whether a piece is drawn around or beside the text: a rule, a frame, a border at the edge of the image, a
/// caret there. No letter reaches from edge to edge, and none has several others inside.
bool isRuleOrFrame(const Glyph& glyph, const Glyphs& all, int usual, const GreyBitmap& image) {
  const bool atLeft = glyph.box.left == 0;
  const bool atRight = glyph.box.right == image.width - 1;
  const bool atTop = glyph.box.top == 0;
  const bool atBottom = glyph.box.bottom == image.height - 1;
  const bool fromTopToBottom = atTop && atBottom;
  // What lies beside or beneath a window that was cropped with its border.
  const bool isBandAtEdge =
      (atLeft && atRight && atTop != atBottom) || (fromTopToBottom && atLeft != atRight);
  if (isBandAtEdge) return true;
  const bool flat = glyph.height() <= std::max(3, usual / 3);
  const bool slender = glyph.width() <= std::max(3, usual / 3);
  if (flat && (glyph.width() > 12 * usual || (atLeft && atRight))) return true;
  if (slender && (glyph.height() > 3 * usual || fromTopToBottom)) return true;
  const bool isCaret =
      slender && (atLeft || atRight) && 5 * glyph.height() > 6 * usual && glyph.height() >= 6 * glyph.width();
  if (isCaret || glyph.height() > 5 * usual) return true;
  if (2 * glyph.height() < 3 * usual) return false;
  const auto inside = std::count_if(all.begin(), all.end(),
                                    [&](const Glyph& other) { return isInside(other.box, glyph.box); });
  return inside > 1 || (inside == 1 && glyph.width() > 2 * usual && glyph.height() > 2 * usual);
}

/// A text cursor before or behind all text: the one tall stroke there is. A vertical bar in text has others
/// beside it, in tables and pipes, or stands between words.
std::optional<std::size_t> caretIn(const Glyphs& glyphs, int usual, Characters characters) {
  const auto isTallStroke = [&](const Glyph& glyph) {
    // A cursor is hardly higher than wide characters, but thinner than their brackets.
    if (characters == Characters::wide)
      return glyph.height() >= 8 * glyph.width() && 10 * glyph.height() >= 12 * usual;
    return glyph.width() <= std::max(3, usual / 3) && 10 * glyph.height() >= 19 * usual;
  };
  if (std::count_if(glyphs.begin(), glyphs.end(), isTallStroke) != 1) return std::nullopt;
  const auto stroke = std::find_if(glyphs.begin(), glyphs.end(), isTallStroke);
  const auto behind = [&](const Glyph& other) {
    return &other == &*stroke || other.box.left > stroke->box.right;
  };
  const auto before = [&](const Glyph& other) {
    return &other == &*stroke || other.box.right < stroke->box.left;
  };
  if (!std::all_of(glyphs.begin(), glyphs.end(), behind) &&
      !std::all_of(glyphs.begin(), glyphs.end(), before))
    return std::nullopt;
  return static_cast<std::size_t>(stroke - glyphs.begin());
}

/// A text cursor that the selection's edge almost cuts off: a thin stroke there, higher than any letter
/// beside it.
bool isCaretAtEdge(const Glyph& stroke, const Glyphs& all, int usual, int imageWidth) {
  const int nearEdge = std::max(2, usual / 4);
  const bool atEdge = stroke.box.left <= nearEdge || imageWidth - 1 - stroke.box.right <= nearEdge;
  if (!atEdge || stroke.height() < 6 * stroke.width() || 5 * stroke.height() < 6 * usual) return false;
  return std::all_of(all.begin(), all.end(), [&](const Glyph& other) {
    const bool beside = other.box.top <= stroke.box.bottom && other.box.bottom >= stroke.box.top;
    return &other == &stroke || !beside || 20 * stroke.height() >= 27 * other.height();
  });
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

/// The row with which a glyph shares most of its height; null where it is none's.
Row* homeOf(const Glyph& glyph, std::vector<Row>& rows) {
  Row* best = nullptr;
  for (Row& row : rows)
    if (2 * row.overlap(glyph) >= std::min(glyph.height(), row.bottom - row.top + 1) &&
        (!best || row.overlap(glyph) > best->overlap(glyph)))
      best = &row;
  return best;
}

/// Rows from what surely is letters, from left to right.
std::vector<Row> rowsOfLetters(const Glyphs& letters) {
  std::vector<Row> rows;
  for (const Glyph& glyph : letters) {
    if (Row* const home = homeOf(glyph, rows))
      home->add(glyph);
    else
      rows.emplace_back(glyph);
  }
  return rows;
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
  for (auto row = rows.begin(); row != rows.end();) {
    const bool low = std::all_of(row->glyphs.begin(), row->glyphs.end(), [usual](const Glyph& glyph) {
      return glyph.height() <= usual && 2 * glyph.width() <= 3 * glyph.height();
    });
    const auto home = std::find_if(rows.begin(), rows.end(), [&](const Row& other) {
      return &other != &*row && other.glyphs.size() > row->glyphs.size() && other.top <= row->bottom &&
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

/// How far a mark is from a row. Flat strokes stand below their row, as underscores do, or in it.
int markDistance(const Row& row, const Glyph& mark, int usual) {
  const bool flat = mark.width() >= 3 * mark.height();
  return row.distance(mark) + (flat && mark.box.bottom < row.top ? usual / 2 : 0);
}

/// Dots, accents, quotation marks, strokes: each to the row that is nearest, if it is within reach. Returns
/// the others.
Glyphs addMarks(std::vector<Row>& rows, const Glyphs& marks, int usual, int reach) {
  Glyphs apart;
  for (const Glyph& mark : marks) {
    const auto nearest = std::min_element(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
      return std::pair(markDistance(a, mark, usual), std::abs(a.middle() - mark.middle())) <
             std::pair(markDistance(b, mark, usual), std::abs(b.middle() - mark.middle()));
    });
    // Accents and quotation marks stand well above small letters, but nothing far below them but strokes.
    const bool upright =
        nearest != rows.end() && mark.box.top > nearest->bottom && mark.width() < mark.height();
    if (nearest != rows.end() && nearest->distance(mark) <= (upright ? reach / 2 : reach))
      nearest->glyphs.push_back(mark);
    else
      apart.push_back(mark);
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

/// Rows of glyphs that are sorted from left to right.
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
  std::vector<Row> rows = rowsOfLetters(letters);
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

std::vector<TextLine> linesOf(Glyphs glyphs, Characters characters) {
  if (glyphs.empty()) return {};
  const int usual = std::max(1, usualHeight(glyphs));
  std::sort(glyphs.begin(), glyphs.end(),
            [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
  std::vector<Row> rows = rowsOf(glyphs, std::max(1, usualHeight(glyphs, characters)), characters);
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
    const bool alone = row.glyphs.size() < 6 && height < 2 * usual && 5 * tallest >= 4 * usual;
    const PixelBox box = boxAround(row.glyphs);
    if (areQuotationMarks(row.glyphs, usual))
      lines.push_back({std::move(row.glyphs), box, usual, box.top + usual * 5 / 4});
    else
      lines.push_back({std::move(row.glyphs), box, alone || height == 0 ? usual : height, row.bottom + 1});
  }
  return lines;
}

/// The lines of the glyphs, parted into columns where there are some.
std::vector<TextLine> linesInReadingOrder(const Glyphs& glyphs, Characters characters) {
  if (glyphs.empty()) return {};
  const int usual = std::max(1, usualHeight(glyphs, characters));
  for (const Gutter& gutter : gutters(glyphs, 2 * usual)) {
    Glyphs left, right;
    for (const Glyph& glyph : glyphs) (glyph.box.left < gutter.end ? left : right).push_back(glyph);
    if (!areColumns(linesOf(left, characters), linesOf(right, characters), gutter, usual)) continue;
    std::vector<TextLine> lines = linesInReadingOrder(left, characters);
    std::vector<TextLine> more = linesInReadingOrder(right, characters);
    std::move(more.begin(), more.end(), std::back_inserter(lines));
    return lines;
  }
  return linesOf(glyphs, characters);
}

}  // namespace

PixelBox boxAround(const std::vector<Glyph>& glyphs) {
  PixelBox box = glyphs.front().box;
  for (const Glyph& glyph : glyphs)
    box = {std::min(box.left, glyph.box.left), std::min(box.top, glyph.box.top),
           std::max(box.right, glyph.box.right), std::max(box.bottom, glyph.box.bottom)};
  return box;
}

std::vector<TextLine> findTextLines(const GreyBitmap& ink, Characters characters) {
  const std::optional<int> threshold = inkThreshold(ink);
  if (!threshold) return {};
  const Glyphs glyphs = connectedPieces(ink, *threshold);
  const int usual = usualHeightWithin(glyphs, characters);
  if (usual == 0) return {};
  Glyphs kept;
  std::copy_if(glyphs.begin(), glyphs.end(), std::back_inserter(kept), [&](const Glyph& glyph) {
    return !isRuleOrFrame(glyph, glyphs, usual, ink) && !isCaretAtEdge(glyph, glyphs, usual, ink.width);
  });
  if (const auto caret = caretIn(kept, usual, characters))
    kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(*caret));
  return linesInReadingOrder(kept, characters);
}

}  // namespace lumiscan::desktop
