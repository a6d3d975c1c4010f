#include "platform/linux/recognition/Spacing.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

/// Neighbours in a line.
struct Pair {
  const Symbol* left;
  Symbol* right;

  int gap() const { return right->box.left - left->box.right - 1; }
};

std::vector<Pair> pairsOf(std::vector<Symbol>& symbols) {
  std::vector<Pair> pairs;
  for (std::size_t i = 1; i < symbols.size(); ++i) pairs.push_back({&symbols[i - 1], &symbols[i]});
  return pairs;
}

/// Between the middles of two boxes, doubled.
int doubleDistance(const PixelBox& left, const PixelBox& right) {
  return right.left + right.right - left.left - left.right;
}

unsigned char firstByte(const Symbol& symbol) { return static_cast<unsigned char>(symbol.text.front()); }
bool isDigit(const Symbol& symbol) { return std::isdigit(firstByte(symbol)) != 0; }
/// The distances, doubled, between neighbours without a space between them.
std::vector<int> doubleDistances(const std::vector<Symbol>& symbols) {
  std::vector<int> distances;
  for (std::size_t i = 1; i < symbols.size(); ++i)
    if (!symbols[i].spaceBefore) distances.push_back(doubleDistance(symbols[i - 1].box, symbols[i].box));
  return distances;
}

/// The distance, doubled, at which all characters stand, if there is one.
std::optional<double> doublePitch(const std::vector<int>& distances) {
  constexpr std::size_t fewest = 10;
  if (distances.size() < fewest) return std::nullopt;
  const int middle = levelAt(distances, 0.5);
  if (middle <= 0) return std::nullopt;
  // Commas and brackets stand at one side of their place; in fonts with widths of their own far more does.
  constexpr int mostOff = 9;  // In hundredths of the pitch.
  std::vector<int> off;
  double sum = 0;
  int regular = 0;
  for (const int distance : distances) {
    off.push_back(100 * std::abs(distance - middle) / middle);
    if (off.back() > 2 * mostOff) continue;
    sum += distance;
    ++regular;
  }
  if (levelAt(std::move(off), 0.8) > mostOff) return std::nullopt;
  return sum / regular;
}

double placesApart(const Pair& pair, double doublePitch) {
  return doubleDistance(pair.left->box, pair.right->box) / doublePitch;
}

/// Whether the spaces that were read between words are places left free. A line of letters that happen to be
/// of one width may have narrower ones; around signs the engine reads too many.
bool fitsSpaces(const std::vector<Pair>& pairs, double doublePitch) {
  std::size_t spaces = 0;
  std::size_t narrow = 0;
  for (const Pair& pair : pairs) {
    if (!pair.right->spaceBefore || !isWordCharacter(*pair.left) || !isWordCharacter(*pair.right)) continue;
    ++spaces;
    narrow += placesApart(pair, doublePitch) < 1.6;
  }
  return 3 * narrow <= spaces;
}

/// Where characters have one width, a space is a place left free.
void correctByPitch(const std::vector<Pair>& pairs, double doublePitch) {
  for (const Pair& pair : pairs) {
    if (!pair.left->hasOwnInk || !pair.right->hasOwnInk) continue;
    const double places = placesApart(pair, doublePitch);
    if (places < 1.4) pair.right->spaceBefore = false;
    if (places > 1.6) pair.right->spaceBefore = true;
  }
}

/// The usual width of a gap that was read as a space, in hundredths of a letter's height.
std::optional<int> usualSpace(const std::vector<Pair>& pairs, int letterHeight) {
  constexpr std::size_t fewest = 3;  // With few there is no telling.
  std::vector<int> widths;
  for (const Pair& pair : pairs)
    if (pair.right->spaceBefore) widths.push_back(100 * pair.gap() / std::max(1, letterHeight));
  if (widths.size() < fewest) return std::nullopt;
  // Some are the gaps between the columns of a table.
  return levelAt(std::move(widths), 0.3);
}

/// A gap as wide as most of a space is one whatever was read; one that is far narrower is none.
void correctByWidth(const std::vector<Pair>& pairs, double space) {
  for (const Pair& pair : pairs) {
    Symbol& right = *pair.right;
    if (!pair.left->hasOwnInk || !right.hasOwnInk) continue;
    const double width = pair.gap() / space;
    const bool inWord = isWordCharacter(*pair.left) && isWordCharacter(right);
    // Letters may reach over their neighbours, in italics most of all.
    if (right.spaceBefore && !inWord && width < 0.35) right.spaceBefore = false;
    // Digits have one width, and some much room in it.
    const bool atDigit = isDigit(*pair.left) || isDigit(right);
    if (!right.spaceBefore && width > (atDigit || !inWord ? 1.0 : 0.8)) right.spaceBefore = true;
  }
}

}  // namespace

bool isWordCharacter(const Symbol& symbol) {
  const unsigned char c = firstByte(symbol);
  return std::isalnum(c) || c == '_' || c >= 0x80;
}

std::optional<double> fixedPitch(const std::vector<Symbol>& symbols) {
  const std::optional<double> pitch = doublePitch(doubleDistances(symbols));
  return pitch ? std::optional(*pitch / 2) : std::nullopt;
}

void correctSpaces(const std::vector<SpacedLine>& lines) {
  std::vector<int> distances;
  std::vector<int> spaces;
  for (const SpacedLine& line : lines) {
    const std::vector<int> ofLine = doubleDistances(*line.symbols);
    distances.insert(distances.end(), ofLine.begin(), ofLine.end());
    if (const auto space = usualSpace(pairsOf(*line.symbols), line.letterHeight)) spaces.push_back(*space);
  }
  const std::optional<double> pitchOfAll = doublePitch(distances);
  for (const SpacedLine& line : lines) {
    const std::vector<Pair> pairs = pairsOf(*line.symbols);
    std::optional<double> pitch = doublePitch(doubleDistances(*line.symbols));
    if (!pitch) pitch = pitchOfAll;
    if (pitch && fitsSpaces(pairs, *pitch)) {
      correctByPitch(pairs, *pitch);
      continue;
    }
    std::optional<int> space = usualSpace(pairs, line.letterHeight);
    if (!space && !spaces.empty()) space = levelAt(spaces, 0.5);
    if (space && *space > 0) correctByWidth(pairs, *space * line.letterHeight / 100.0);
  }
}

}  // namespace lumiscan::desktop
