#include "platform/linux/recognition/Bullets.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

/// Whether the ink of a glyph fills a circle, and is that of no smaller or larger sign.
bool isDisc(const Glyph& glyph, const GreyBitmap& ink, const TextLine& line) {
  const PixelBox& box = glyph.box;
  if (glyph.height() < 4 || 4 * glyph.height() < line.letterHeight ||
      10 * glyph.height() > 9 * line.letterHeight ||
      std::abs(glyph.width() - glyph.height()) > std::max(1, glyph.height() / 6))
    return false;
  const double middle = (box.top + box.bottom) / 2.0;
  const double middleOfLetters = line.baseline - (line.letterHeight + 1) / 2.0;
  if (std::abs(middle - middleOfLetters) > 0.2 * line.letterHeight) return false;
  double sum = 0;
  double corners = 0;
  int most = 1;
  for (int y = box.top; y <= box.bottom; ++y)
    for (int x = box.left; x <= box.right; ++x) {
      const int value = ink.at(x, y);
      sum += value;
      most = std::max(most, value);
      if ((x == box.left || x == box.right) && (y == box.top || y == box.bottom)) corners += value;
    }
  const double filled = sum / (most * static_cast<double>(glyph.width() * glyph.height()));
  const double middleInk = ink.at((box.left + box.right) / 2, (box.top + box.bottom) / 2);
  return filled > 0.55 && filled < 0.9 && middleInk > 0.9 * most && corners < 2.0 * most;
}

/// Whether a symbol is a letter or digit: one that no disc looks like, or in the middle of a word.
bool isLetter(std::vector<Symbol>::const_iterator symbol, const std::vector<Symbol>& symbols) {
  const auto letter = static_cast<UChar32>(onlyCodePoint(symbol->text));
  if (!u_isalnum(letter)) return false;
  const bool isWithinWord = symbol != symbols.begin() && !symbol->spaceBefore &&
                            symbol + 1 != symbols.end() && !(symbol + 1)->spaceBefore;
  return (letter != 'e' && letter != 'o') || isWithinWord;
}

}  // namespace

void correctBullets(std::vector<Symbol>& symbols, const std::vector<Glyph>& glyphs, const GreyBitmap& ink,
                    const TextLine& line) {
  if (line.cells) return;                   // Code has none, and its points may seem to stand alone.
  const int least = line.letterHeight / 3;  // Of the gaps beside a bullet.
  for (const Glyph& glyph : glyphs) {
    if (!isDisc(glyph, ink, line)) continue;
    const PixelBox& box = glyph.box;
    const auto isBeside = [&](const Glyph& other) {
      return &other != &glyph && other.box.right >= box.left - least && other.box.left <= box.right + least;
    };
    if (glyphs.size() == 1 || std::any_of(glyphs.begin(), glyphs.end(), isBeside)) continue;
    const int middle = (box.left + box.right) / 2;
    const auto next = std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& symbol) {
      return (symbol.box.left + symbol.box.right) / 2 >= box.left;
    });
    constexpr double sure = 99;
    const Symbol bullet{"•", next != symbols.begin(), box, sure, true, true};
    const bool wasRead = next != symbols.end() && std::abs((next->box.left + next->box.right) / 2 - middle) <=
                                                      std::max(box.width(), least);
    // Of few pixels, a letter may look like it.
    if (wasRead && isLetter(next, symbols)) continue;
    const auto place = wasRead ? next : symbols.insert(next, bullet);
    *place = bullet;
    if (place + 1 != symbols.end()) (place + 1)->spaceBefore = true;
  }
}

}  // namespace lumiscan::desktop
