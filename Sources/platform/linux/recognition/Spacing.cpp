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

unsigned char firstByte(const Symbol& symbol) { return static_cast<unsigned char>(symbol.text.front()); }
bool isDigit(const Symbol& symbol) { return std::isdigit(firstByte(symbol)) != 0; }

/// A space is a place left free.
void correctByPitch(const std::vector<Pair>& pairs, double pitch) {
  for (const Pair& pair : pairs) {
    if (!pair.left->hasOwnInk || !pair.right->hasOwnInk) continue;
    const double places =
        (pair.right->box.left + pair.right->box.right - pair.left->box.left - pair.left->box.right) / 2.0 /
        pitch;
    // Commas and brackets stand at one side of their place.
    if (places < 1.4) pair.right->spaceBefore = false;
    if (places > 1.6) pair.right->spaceBefore = true;
  }
}

/// A line's gaps that were read as spaces, and how wide those within its words are, all in pixels.
struct Gaps {
  std::vector<int> spaces;
  int wideInWords = 0;    // Three of four are no wider,
  int widestInWords = 0;  // and hardly one is wider than this.
};

Gaps gapsOf(const std::vector<Pair>& pairs) {
  Gaps gaps;
  std::vector<int> inWords;
  for (const Pair& pair : pairs) (pair.right->spaceBefore ? gaps.spaces : inWords).push_back(pair.gap());
  if (inWords.empty()) return gaps;
  gaps.wideInWords = std::max(0, levelAt(inWords, 0.75));
  gaps.widestInWords = std::max(0, levelAt(std::move(inWords), 0.9));
  // What is no wider than those was read as a space by mistake.
  std::erase_if(gaps.spaces, [&](int space) { return space <= gaps.widestInWords; });
  return gaps;
}

/// The usual width of a space, in hundredths of a letter's height.
std::optional<int> usualSpace(Gaps gaps, int letterHeight) {
  constexpr std::size_t fewest = 3;  // With few there is no telling.
  if (gaps.spaces.size() < fewest) return std::nullopt;
  // Some are the gaps between the columns of a table.
  return 100 * levelAt(std::move(gaps.spaces), 0.3) / std::max(1, letterHeight);
}

/// A gap as wide as most of a space is one whatever was read; one that is far narrower is none. A space that
/// was measured in other lines tells less. A space within a word must stand out among the gaps of words, too;
/// one beside a backtick is wider than others, since the mark is narrow in its place.
void correctByWidth(const std::vector<Pair>& pairs, int wideInWords, double space, bool isOfLine) {
  const double leastInWord = 1.3 * wideInWords + 1;
  for (const Pair& pair : pairs) {
    Symbol& right = *pair.right;
    if (!pair.left->hasOwnInk || !right.hasOwnInk) continue;
    const double width = pair.gap() / space;
    const bool inWord = isWordCharacter(*pair.left) && isWordCharacter(right);
    // Signs have room of their own; letters may reach over their neighbours, in italics most of all.
    const bool atLetter = isWordCharacter(*pair.left) || isWordCharacter(right);
    const bool atBacktick = pair.left->text == "`" || right.text == "`";
    const double least = atBacktick ? 0.85 : !isOfLine ? 0.35 : atLetter ? 0.6 : 0.8;
    if (right.spaceBefore && !inWord && width < least) right.spaceBefore = false;
    // Digits have one width, and some much room in it.
    const bool atDigit = isDigit(*pair.left) || isDigit(right);
    if (!right.spaceBefore && width > (atDigit || !inWord ? 1.0 : 0.8) &&
        (!inWord || pair.gap() > leastInWord))
      right.spaceBefore = true;
  }
}

}  // namespace

bool isWordCharacter(const Symbol& symbol) {
  const unsigned char c = firstByte(symbol);
  return std::isalnum(c) || c == '_' || c >= 0x80;
}

void correctSpaces(const std::vector<SpacedLine>& lines) {
  std::vector<int> spaces;
  for (const SpacedLine& each : lines)
    if (const auto space = usualSpace(gapsOf(pairsOf(*each.symbols)), each.line->letterHeight))
      spaces.push_back(*space);
  for (const SpacedLine& each : lines) {
    const std::vector<Pair> pairs = pairsOf(*each.symbols);
    if (each.line->cells) {
      correctByPitch(pairs, each.line->cells->pitch);
      continue;
    }
    const Gaps gaps = gapsOf(pairs);
    std::optional<int> space = usualSpace(gaps, each.line->letterHeight);
    // In a line with many spaces that are none, they look narrow.
    const bool isOfLine = space && (spaces.empty() || 10 * *space >= 7 * levelAt(spaces, 0.5));
    if (!isOfLine && !spaces.empty()) space = levelAt(spaces, 0.5);
    if (space && *space > 0)
      correctByWidth(pairs, gaps.wideInWords, *space * each.line->letterHeight / 100.0, isOfLine);
  }
}

}  // namespace lumiscan::desktop
