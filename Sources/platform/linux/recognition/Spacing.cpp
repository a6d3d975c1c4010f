#include "platform/linux/recognition/Spacing.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

namespace {

/// Neighbours in a line.
struct Pair {
  const Symbol* left;
  Symbol* right;

  int gap() const { return right->box.left - left->box.right - 1; }
  /// Between the middles.
  double distance() const {
    return (right->box.left + right->box.right - left->box.left - left->box.right) / 2.0;
  }
  bool isOfOwnInk() const { return left->hasOwnInk && right->hasOwnInk; }
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
    if (!pair.isOfOwnInk()) continue;
    const double places = pair.distance() / pitch;
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

/// The widest gap within words near one: in code amid text they are wider than elsewhere in the line.
int widestAround(const std::vector<Pair>& pairs, const Pair& pair) {
  constexpr std::ptrdiff_t reach = 4;
  const std::ptrdiff_t at = &pair - pairs.data();
  const auto size = static_cast<std::ptrdiff_t>(pairs.size());
  int widest = 0;
  for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(0, at - reach); i <= std::min(size - 1, at + reach); ++i) {
    const Pair& other = pairs[static_cast<std::size_t>(i)];
    if (i != at && !other.right->spaceBefore) widest = std::max(widest, other.gap());
  }
  return widest;
}

/// Whether the pair's left one begins a word.
bool isFirstLetter(const std::vector<Pair>& pairs, const Pair& pair) {
  return &pair == pairs.data() || pair.left->spaceBefore || !isWordCharacter(*(&pair - 1)->left);
}

/// A gap as wide as most of a space is one whatever was read; one that is far narrower is none. A space that
/// was measured in other lines tells less. A space within a word must stand out among the gaps of words, too;
/// one beside a backtick is wider than others, since the mark is narrow in its place.
void correctByWidth(const std::vector<Pair>& pairs, int wideInWords, double space, bool isOfLine) {
  for (const Pair& pair : pairs) {
    Symbol& right = *pair.right;
    if (!pair.isOfOwnInk()) continue;
    const double width = pair.gap() / space;
    const bool inWord = isWordCharacter(*pair.left) && isWordCharacter(right);
    // Signs have room of their own; letters may reach over their neighbours, in italics most of all.
    const bool atLetter = isWordCharacter(*pair.left) || isWordCharacter(right);
    const bool atBacktick = pair.left->text == "`" || right.text == "`";
    const double least = atBacktick ? 0.75 : !isOfLine ? 0.35 : atLetter ? 0.6 : 0.8;
    if (right.spaceBefore && !inWord && width < least) right.spaceBefore = false;
    const double leastInWord = 1.3 * std::max(wideInWords, widestAround(pairs, pair)) + 1;
    // Digits have one width, and some much room in it. An A, alone a word, has none at its foot.
    const bool atDigit = isDigit(*pair.left) || isDigit(right);
    const bool behindA = isFirstLetter(pairs, pair) && pair.left->text == "A";
    const double leastWidth = behindA ? 0.6 : atDigit || !inWord ? 1.0 : 0.8;
    if (!right.spaceBefore && width > leastWidth && (!(inWord || behindA) || pair.gap() > leastInWord))
      right.spaceBefore = true;
  }
}

bool isNarrow(const Symbol& symbol) {
  return symbol.text.size() == 1 &&
         std::string_view("ijl.,:;'|!-").find(symbol.text) != std::string_view::npos;
}

/// Words among others whose characters have one width, as code amid text has: pairs that are equally far
/// apart, but for the places of underscores.
class FixedWidthRun {
 public:
  /// Of the pairs on both sides of one that fit the usual distance around it.
  FixedWidthRun(const std::vector<Pair>& pairs, std::size_t at)
      : pairs_(pairs), at_(at), first_(at), last_(at) {
    std::vector<int> distances;  // Twice as long, to be whole numbers.
    for (std::size_t i = at < 2 ? 0 : at - 2; i < std::min(pairs.size(), at + 3); ++i)
      distances.push_back(static_cast<int>(2 * pairs[i].distance()));
    pitch_ = levelAt(std::move(distances), 0.5) / 2.0;
    while (first_ > 0 && fits(first_ - 1)) --first_;
    while (last_ + 1 < pairs.size() && fits(last_ + 1)) ++last_;
  }

  /// Whether they are several letters and more, from the start of a word to the end of one, and large enough
  /// to tell their distances from others.
  bool isOne() const {
    constexpr int fewest = 4;
    constexpr double least = 7.5;
    int letters = 0;
    for (std::size_t i = first_; i <= last_; ++i)
      letters += isWordCharacter(*pairs_[i].left) && isWordCharacter(*pairs_[i].right);
    return fits(at_) && letters >= fewest && pitch_ >= least && (first_ == 0 || isAtEdge(first_ - 1)) &&
           (last_ + 1 == pairs_.size() || isAtEdge(last_ + 1));
  }
  bool has(std::size_t pair) const { return pair >= first_ && pair <= last_; }

 private:
  bool fits(std::size_t pair) const {
    // Digits have one width in most fonts.
    const Pair& it = pairs_[pair];
    if (!it.isOfOwnInk() || isDigit(*it.left) || isDigit(*it.right)) return false;
    const double tolerance = std::max(1.0, 0.18 * pitch_);
    return std::abs(it.distance() - pitch_) <= tolerance ||
           (!it.right->spaceBefore && std::abs(it.distance() - 2 * pitch_) <= tolerance);
  }
  bool isAtEdge(std::size_t pair) const {
    const Pair& it = pairs_[pair];
    return it.right->spaceBefore || !isWordCharacter(*it.left) || !isWordCharacter(*it.right);
  }

  const std::vector<Pair>& pairs_;
  double pitch_ = 0;
  std::size_t at_, first_, last_;
};

/// In code amid text narrow characters have wide gaps on both sides, which are no spaces.
void joinFixedWidth(const std::vector<Pair>& pairs) {
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (!pairs[i].right->spaceBefore) continue;
    const FixedWidthRun run(pairs, i);
    const auto isAsWide = [&](std::size_t other) {
      return run.has(other) && 5 * pairs[other].gap() >= 3 * pairs[i].gap();
    };
    const bool isAtNarrow = (isNarrow(*pairs[i].left) && i > 0 && isAsWide(i - 1)) ||
                            (isNarrow(*pairs[i].right) && isAsWide(i + 1));
    if (isAtNarrow && run.isOne()) pairs[i].right->spaceBefore = false;
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
    joinFixedWidth(pairs);
  }
}

}  // namespace lumiscan::desktop
