#include "platform/linux/recognition/Baselines.h"

#include <algorithm>

#include "platform/linux/recognition/LineShapes.h"

namespace lumiscan::desktop {

namespace {

void settleBaseline(TextLine& line, const GreyBitmap& ink) {
  constexpr double deepest = 0.45;  // In heights of a letter.
  constexpr double better = 0.15;   // So much that it is no chance.
  TextLine trial = line;
  double most = likeness(line, ink) + better;
  const int lowest = line.box.bottom + 1;
  for (int up = 0; up <= deepest * line.letterHeight; ++up) {
    trial.baseline = lowest - up;
    const double found = likeness(trial, ink);
    if (found <= most) continue;
    most = found;
    line.baseline = trial.baseline;
  }
}

/// The feet of a word of a few letters, half of which reach below the line, as in Apply: which of the rows
/// where letters end it stands on.
void settleAmongFeet(TextLine& line, const GreyBitmap& ink) {
  constexpr double better = 0.1;
  TextLine trial = line;
  double most = likeness(line, ink) + better;
  for (const Glyph& glyph : line.glyphs) {
    trial.baseline = glyph.box.bottom + 1;
    if (trial.baseline == line.baseline) continue;
    const double found = likeness(trial, ink);
    if (found <= most) continue;
    most = found;
    line.baseline = trial.baseline;
  }
}

/// Whether at least two letters, and a third of all, end higher than the line is said to stand.
bool endHigher(const TextLine& line) {
  const auto higher = std::count_if(line.glyphs.begin(), line.glyphs.end(), [&](const Glyph& glyph) {
    return 3 * glyph.height() >= 2 * line.letterHeight &&
           6 * (line.baseline - 1 - glyph.box.bottom) >= line.letterHeight;
  });
  return higher >= 2 && 3 * static_cast<std::size_t>(higher) >= line.glyphs.size();
}

}  // namespace

void settleBaselines(std::vector<TextLine>& lines, const GreyBitmap& ink) {
  constexpr std::size_t few = 3;  // Glyphs: a semicolon has two.
  for (TextLine& line : lines) {
    // Of marks alone, which may stand anywhere, the place in the line says most.
    const bool hasTall = std::any_of(line.glyphs.begin(), line.glyphs.end(), [&](const Glyph& glyph) {
      return 5 * glyph.height() >= 6 * line.letterHeight;
    });
    if (line.glyphs.size() <= few && hasTall)
      settleBaseline(line, ink);
    else if (endHigher(line))
      settleAmongFeet(line, ink);
  }
}

}  // namespace lumiscan::desktop
