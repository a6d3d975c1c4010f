#include "platform/linux/recognition/TypeSizes.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/linux/recognition/LineShapes.h"
#include "platform/linux/recognition/Lines.h"

namespace lumiscan::desktop {

namespace {

using Glyphs = std::vector<Glyph>;

/// Glyphs with nothing between them along x: a letter, or letters of several lines.
struct Blob {
  Glyphs glyphs;
  int left, right;
  int height;  // Of the highest glyph.

  void add(const Glyph& glyph) {
    glyphs.push_back(glyph);
    right = std::max(right, glyph.box.right);
    height = std::max(height, glyph.height());
  }
};

using Blobs = std::vector<Blob>;

void append(Blob& blob, const Blob& more) {
  for (const Glyph& glyph : more.glyphs) blob.add(glyph);
}

Blobs blobsOf(Glyphs glyphs) {
  std::sort(glyphs.begin(), glyphs.end(),
            [](const Glyph& a, const Glyph& b) { return a.box.left < b.box.left; });
  Blobs blobs;
  for (const Glyph& glyph : glyphs) {
    if (!blobs.empty() && glyph.box.left <= blobs.back().right)
      blobs.back().add(glyph);
    else
      blobs.push_back({{glyph}, glyph.box.left, glyph.box.right, glyph.height()});
  }
  return blobs;
}

/// Whether a blob stands high beside a letter, as a degree sign does.
bool isRaised(const Blob& blob, const Blob& letter) {
  const int gap = blob.left - letter.right - 1;
  return 2 * blob.height <= letter.height && 5 * gap <= 4 * blob.height &&
         boxAround(blob.glyphs).bottom < letter.glyphs.front().middle();
}

/// Whether a blob is a point or the like, which is as low beside letters of its own size.
bool isMark(const Blobs& blobs, std::size_t i) {
  const int height = blobs[i].height;
  const bool isFirst = i == 0, isLast = i + 1 == blobs.size();
  if (isFirst || isLast)
    return (!isFirst && (isRaised(blobs[i], blobs[i - 1]) || 4 * height <= blobs[i - 1].height)) ||
           (!isLast && 4 * height <= blobs[i + 1].height);
  return 2 * height <= std::min(blobs[i - 1].height, blobs[i + 1].height) || isRaised(blobs[i], blobs[i - 1]);
}

using Word = Blobs;

int highestOf(const Word& word) {
  return std::max_element(word.begin(), word.end(),
                          [](const Blob& a, const Blob& b) { return a.height < b.height; })
      ->height;
}

/// The height of the lowest letter, which is higher than marks are.
int lowestOf(const Word& word) {
  int lowest = highestOf(word);
  const int least = lowest / 2;
  for (const Blob& letter : word)
    if (letter.height > least) lowest = std::min(lowest, letter.height);
  return lowest;
}

/// Whether two heights are so different that capitals and small letters of one size aren't.
bool isStep(int higher, int lower) { return 5 * higher >= 6 * lower; }

/// Parts a word where all letters on one side are higher than all on the other: there may be no space between
/// two sizes.
void addParted(std::vector<Word>& words, Word word) {
  for (auto letter = word.begin() + 1; letter < word.end(); ++letter) {
    Word before(word.begin(), letter), behind(letter, word.end());
    const auto isHigher = [](const Word& a, const Word& b) { return 2 * lowestOf(a) >= 3 * highestOf(b); };
    if (!isHigher(before, behind) && !isHigher(behind, before)) continue;
    words.push_back(std::move(before));
    return addParted(words, std::move(behind));
  }
  words.push_back(std::move(word));
}

std::vector<Word> wordsOf(const Blobs& blobs) {
  std::vector<Word> words;
  Word word;
  for (std::size_t i = 0; i < blobs.size(); ++i) {
    if (isMark(blobs, i) && !word.empty()) {
      append(word.back(), blobs[i]);
      continue;
    }
    if (!word.empty()) {
      const Blob& last = word.back();
      const int gap = blobs[i].left - last.right - 1;
      if (gap >= 2 && 5 * gap >= 2 * std::min(last.height, blobs[i].height))
        addParted(words, std::exchange(word, {}));
    }
    word.push_back(blobs[i]);
  }
  addParted(words, std::move(word));
  return words;
}

/// What stands side by side in one size.
struct Piece {
  Glyphs glyphs;
  bool isLarge;
};

/// How larger and smaller type may stand beside each other.
std::vector<std::vector<Piece>> waysToPart(Glyphs strip) {
  const std::vector<Word> words = wordsOf(blobsOf(std::move(strip)));
  std::vector<int> heights;
  for (const Word& word : words) heights.push_back(highestOf(word));
  std::sort(heights.begin(), heights.end());
  std::vector<std::vector<Piece>> ways;
  for (std::size_t i = 1; i < heights.size(); ++i) {
    const int small = heights[i - 1];
    constexpr int least = 5;  // Pixels: what is lower is no letter.
    if (small < least || 10 * heights[i] <= 11 * small) continue;
    // The small letters of the larger type are higher than capitals of the smaller.
    const bool areLarge = std::all_of(words.begin(), words.end(), [&](const Word& word) {
      return highestOf(word) <= small || 10 * lowestOf(word) > 11 * small;
    });
    if (!areLarge) continue;
    std::vector<Piece> pieces;
    for (const Word& word : words) {
      const bool isLarge = highestOf(word) > small;
      if (pieces.empty() || pieces.back().isLarge != isLarge) pieces.push_back({{}, isLarge});
      Glyphs& glyphs = pieces.back().glyphs;
      for (const Blob& letter : word) glyphs.insert(glyphs.end(), letter.glyphs.begin(), letter.glyphs.end());
    }
    ways.push_back(std::move(pieces));
  }
  return ways;
}

/// Whether at least a third of the shorter line's letters end where those of the other stand.
bool areOnOneBaseline(const TextLine& left, const TextLine& right) {
  const int letter = std::min(left.letterHeight, right.letterHeight);
  const TextLine& few = left.glyphs.size() < right.glyphs.size() ? left : right;
  const TextLine& many = &few == &left ? right : left;
  const auto feet = std::count_if(few.glyphs.begin(), few.glyphs.end(), [&](const Glyph& glyph) {
    return 5 * std::abs(glyph.box.bottom + 1 - many.baseline) <= letter;
  });
  return 3 * static_cast<std::size_t>(feet) >= few.glyphs.size();
}

/// Whether two pieces that stand side by side are of one line: also a small sign before a price is.
bool areOfOneLine(const TextLine& left, const TextLine& right) {
  const int letter = std::min(left.letterHeight, right.letterHeight);
  return 2 * (right.box.left - left.box.right) <= letter || areOnOneBaseline(left, right);
}

/// Whether a third of what stands in a line surely is letters or digits.
bool hasLetters(const TextLine& line, const GreyBitmap& ink) {
  constexpr float likely = 0.8F;
  LineShapes shapes(ink, line, line.glyphs);
  const std::size_t count = shapes.clusters().size();
  std::size_t letters = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Classification& shape = shapes.classification(i);
    letters += shape.bestProbability() >= likely && u_isalnum(static_cast<UChar32>(shape.best()));
  }
  return letters > 0 && 3 * letters >= count;
}

/// The glyphs that are no points, commas or signs that stand high.
Glyphs lettersOf(const Glyphs& glyphs) {
  int highest = 0;
  for (const Glyph& glyph : glyphs) highest = std::max(highest, glyph.height());
  Glyphs letters;
  std::copy_if(glyphs.begin(), glyphs.end(), std::back_inserter(letters),
               [&](const Glyph& glyph) { return 2 * glyph.height() > highest; });
  return letters;
}

/// Settles the height of a letter in a few, which may be capitals or digits alone. Of the larger piece the
/// lesser height counts in doubt: so it is no larger than the other.
void settleLetterHeight(TextLine& line, bool isLarge, const GreyBitmap& ink) {
  constexpr std::size_t few = 8;
  constexpr double doubt = 0.5;
  const Glyphs letters = lettersOf(line.glyphs);
  if (letters.size() > few) return;
  const auto [lowest, highest] = std::minmax_element(
      letters.begin(), letters.end(), [](const Glyph& a, const Glyph& b) { return a.height() < b.height(); });
  line.letterHeight = lowest->height();
  if (isStep(highest->height(), lowest->height())) return;
  TextLine ofCapitals = line;
  ofCapitals.letterHeight = (highest->height() * 72 + 50) / 100;
  if (likeness(ofCapitals, ink) > likeness(line, ink) + (isLarge ? -doubt : doubt))
    line.letterHeight = ofCapitals.letterHeight;
}

/// A piece as lines: those beside larger type may be several.
struct LinedPiece {
  std::vector<TextLine> lines;
  bool isLarge;
};

/// Whether the pieces at both sides of a place are of one line.
bool areJoined(const std::vector<LinedPiece>& pieces, std::size_t i) {
  const std::vector<TextLine>& left = pieces[i - 1].lines;
  const std::vector<TextLine>& right = pieces[i].lines;
  return left.size() == 1 && right.size() == 1 && areOfOneLine(left.front(), right.front());
}

/// Whether a few small marks stand on the line of a piece beside them. Where they don't they may be commas,
/// quotation marks or the like, which look like letters when nothing of their size is beside them.
bool areLevel(const std::vector<LinedPiece>& pieces, std::size_t i) {
  constexpr std::size_t few = 3;
  const auto& [lines, isLarge] = pieces[i];
  if (isLarge || lines.size() > 1 || clustersOf(lines.front().glyphs).size() > few) return true;
  const auto isLevelWith = [&marks = lines.front()](const LinedPiece& other) {
    return other.lines.size() == 1 && areOnOneBaseline(marks, other.lines.front());
  };
  return (i > 0 && isLevelWith(pieces[i - 1])) || (i + 1 < pieces.size() && isLevelWith(pieces[i + 1]));
}

/// Whether all pieces surely have letters or digits: signs, as dashes and quotation marks, are smaller or
/// larger than these in one size.
bool haveLetters(const std::vector<LinedPiece>& pieces, const GreyBitmap& ink) {
  for (std::size_t i = 0; i < pieces.size(); ++i)
    if (!areLevel(pieces, i) || !std::all_of(pieces[i].lines.begin(), pieces[i].lines.end(),
                                             [&](const TextLine& line) { return hasLetters(line, ink); }))
      return false;
  return true;
}

std::vector<LinedPiece> linedPieces(const std::vector<Piece>& pieces, const GreyBitmap& ink) {
  std::vector<LinedPiece> lined;
  for (const auto& [glyphs, isLarge] : pieces) {
    const int usual = std::max(1, usualHeight(lettersOf(glyphs)));
    std::vector<TextLine> lines = linesOf(glyphs, usual);
    if (lines.size() == 1) settleLetterHeight(lines.front(), isLarge, ink);
    lined.push_back({std::move(lines), isLarge});
  }
  return lined;
}

/// Whether a piece of one line stands in the middle beside one of several.
bool isBesideLines(const std::vector<LinedPiece>& pieces) {
  if (pieces.size() != 2 || pieces[0].lines.size() == pieces[1].lines.size()) return false;
  const bool isFirst = pieces[0].lines.size() == 1;
  const std::vector<TextLine>& one = pieces[isFirst ? 0 : 1].lines;
  const std::vector<TextLine>& several = pieces[isFirst ? 1 : 0].lines;
  const auto twiceMiddle = [](const TextLine& line) { return line.baseline - line.letterHeight; };
  return one.size() == 1 && std::abs(twiceMiddle(several.front()) + twiceMiddle(several.back()) -
                                     2 * twiceMiddle(one.front())) <= several.front().letterHeight;
}

/// How much the letters look like such. Marks look like others in any line.
double likenessOfLetters(const std::vector<TextLine>& lines, const GreyBitmap& ink) {
  double sum = 0;
  for (TextLine line : lines) {
    std::erase_if(line.glyphs,
                  [&](const Glyph& glyph) { return 5 * glyph.height() < 2 * line.letterHeight; });
    sum += likeness(line, ink);
  }
  return sum;
}

/// By how much the letters of the larger pieces surpass those of the smaller.
double ratioOf(const std::vector<LinedPiece>& pieces) {
  int largest = 0, smallest = std::numeric_limits<int>::max();
  for (const auto& [lines, isLarge] : pieces)
    for (const TextLine& line : lines) {
      if (isLarge)
        smallest = std::min(smallest, line.letterHeight);
      else
        largest = std::max(largest, line.letterHeight);
    }
  return static_cast<double>(smallest) / largest;
}

/// All lines; the pieces that are of one line know it.
std::vector<TextLine> joinedLines(std::vector<LinedPiece> pieces) {
  for (std::size_t first = 0, end = 1; first < pieces.size(); first = end++) {
    PixelBox whole = pieces[first].lines.front().box;
    for (; end < pieces.size() && areJoined(pieces, end); ++end)
      whole = boxAround({{whole}, {pieces[end].lines.front().box}});
    if (end == first + 1) continue;
    for (std::size_t i = first; i < end; ++i) pieces[i].lines.front().whole = whole;
  }
  std::vector<TextLine> all;
  for (LinedPiece& piece : pieces) std::move(piece.lines.begin(), piece.lines.end(), std::back_inserter(all));
  return all;
}

}  // namespace

std::vector<TextLine> linesOfSizes(const Glyphs& strip, const GreyBitmap& ink) {
  constexpr std::size_t mostGlyphs = 300;  // More are a picture.
  constexpr double doubt = 0.3;
  if (strip.size() > mostGlyphs) return {};
  const std::vector<std::vector<Piece>> ways = waysToPart(strip);
  if (ways.empty()) return {};
  const std::vector<TextLine> ofOneSize = linesOf(strip, Characters::alphabetic);
  const double usual = likenessOfLetters(ofOneSize, ink);
  double most = 0;
  std::vector<TextLine> best;
  for (const std::vector<Piece>& way : ways) {
    std::vector<LinedPiece> pieces = linedPieces(way, ink);
    const bool isBeside = isBesideLines(pieces);
    const double ratio = ratioOf(pieces);
    if (ratio < (isBeside ? 0.9 : 1.25) || !haveLetters(pieces, ink)) continue;
    std::vector<TextLine> lines = joinedLines(std::move(pieces));
    // Letters that are much too large or small for their line look like others, as capitals do like small
    // ones; and signs that stand high are no line.
    const bool isOneLine =
        ofOneSize.size() > 1 && std::all_of(lines.begin(), lines.end(), [&](const TextLine& line) {
          return line.whole && line.whole == lines.front().whole;
        });
    const double found = likenessOfLetters(lines, ink);
    const double least = usual + (isBeside ? -2 * doubt : ratio >= 1.6 || isOneLine ? -doubt : doubt);
    if (found < most || found < least) continue;
    most = found;
    best = std::move(lines);
  }
  return best;
}

}  // namespace lumiscan::desktop
