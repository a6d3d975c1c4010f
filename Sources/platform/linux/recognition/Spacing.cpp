#include "platform/linux/recognition/Spacing.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

#include "platform/linux/recognition/LetterHeights.h"
#include "platform/linux/recognition/Level.h"
#include "platform/linux/recognition/SideBearings.h"

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
  bool isMeasured() const { return left->endsWithInk() && right->beginsWithInk(); }
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

/// The height of a line's x, of which the heights of its characters tell.
double sizeOf(const SpacedLine& line) {
  constexpr double ofTall = 0.73;
  if (const int low = medianHeight(*line.symbols, lowLetters); low > 0) return low;
  if (const int tall = medianHeight(*line.symbols, tallCharacters); tall > 0) return ofTall * tall;
  return line.line->letterHeight;
}

/// In heights of an x.
struct Gap {
  Pair pair;
  double room;   // Between the ink.
  double width;  // But for the shapes on both sides, and then beyond that of gaps within words.
};

using Gaps = std::vector<Gap>;

Gaps gapsOf(const SpacedLine& line) {
  Gaps gaps;
  const double size = std::max(1.0, sizeOf(line));
  for (const Pair& pair : pairsOf(*line.symbols)) {
    if (!pair.isMeasured()) continue;
    const double room = pair.gap() / size;
    gaps.push_back({pair, room, room - roomOfShapes(*pair.left, *pair.right)});
  }
  return gaps;
}

/// The median of some values, among which another counts as several.
double usualOf(std::vector<double> values, double other, double countOfOther) {
  if (values.empty()) return other;
  const auto count = static_cast<double>(values.size());
  return (levelAt(std::move(values), 0.5) * count + other * countOfOther) / (count + countOfOther);
}

std::vector<double> widthsWithinWords(const Gaps& gaps) {
  std::vector<double> widths;
  for (const Gap& gap : gaps)
    if (gap.pair.isOfOwnInk() && !gap.pair.right->spaceBefore) widths.push_back(gap.width);
  return widths;
}

/// The widths of the gaps that were read as spaces and may be such; in tables there are wider ones.
std::vector<double> widthsOfSpaces(const Gaps& gaps) {
  std::vector<double> widths;
  for (const Gap& gap : gaps)
    if (gap.pair.isOfOwnInk() && gap.pair.right->spaceBefore && gap.width > 0.2 && gap.width < 0.75)
      widths.push_back(gap.width);
  return widths;
}

/// A measure of each line's gaps. Lines with few of them have that of the image, and images the usual one.
std::vector<double> measure(const std::vector<Gaps>& lines, std::vector<double> (*widthsOf)(const Gaps&),
                            double usual, double countOfOther) {
  std::vector<double> all;
  for (const Gaps& gaps : lines)
    for (const double width : widthsOf(gaps)) all.push_back(width);
  const double ofImage = usualOf(std::move(all), usual, countOfOther);
  std::vector<double> measures;
  for (const Gaps& gaps : lines) measures.push_back(usualOf(widthsOf(gaps), ofImage, countOfOther));
  return measures;
}

enum class Kind { letter, digit, sign };

Kind kindOf(const Symbol& symbol) {
  if (isDigit(symbol)) return Kind::digit;
  // Accented letters and those of other scripts start with bytes from 0xC3 on, 0xE2 starts typographic marks.
  const unsigned char c = firstByte(symbol);
  return std::isalpha(c) || (c >= 0xC3 && c != 0xE2) ? Kind::letter : Kind::sign;
}

/// In widths of a space. What was read as none is one from `least` on; what was read as one is none up to
/// `most`.
struct Bounds {
  double least, most;
};

/// Where the engine errs, by what is on both sides. Of letters it knows the words; digits have one width, and
/// some much room in it; some signs stand far from their neighbours.
Bounds boundsByKind(Kind left, Kind right) {
  constexpr double none = -100;
  switch (left) {
    case Kind::letter:
      return right == Kind::letter  ? Bounds{0.76, none}
             : right == Kind::digit ? Bounds{0.62, 0.35}
                                    : Bounds{0.76, 0.45};
    case Kind::digit:
      return right == Kind::letter  ? Bounds{0.62, 0.35}
             : right == Kind::digit ? Bounds{0.8, 0.65}
                                    : Bounds{0.95, 0.3};
    default:
      return right == Kind::letter  ? Bounds{1.0, 0.25}
             : right == Kind::digit ? Bounds{0.9, 0.35}
                                    : Bounds{1.0, 0};
  }
}

bool isOneOf(const Symbol& symbol, std::string_view characters) {
  return symbol.text.size() == 1 && characters.find(symbol.text) != std::string_view::npos;
}

/// Whether one of the pair may be a word of one letter, and the other the end of a word before it or the
/// start of one behind it. Whatever their shapes, there is some room between them.
bool isAtLoneLetter(const std::vector<Symbol>& symbols, const Gap& gap) {
  constexpr double leastRoom = 0.29;
  const auto& [left, right] = gap.pair;
  const Symbol* const end = symbols.data() + symbols.size();
  const bool beginsWord = left == symbols.data() || left->spaceBefore || kindOf(*(left - 1)) == Kind::sign;
  const bool endsWord = right + 1 == end || right[1].spaceBefore;
  const auto mayBeBeside = [](const Symbol& symbol) {
    return kindOf(symbol) == Kind::letter || isOneOf(symbol, ".,\"'") || symbol.text.starts_with('\xE2');
  };
  return gap.room > leastRoom && ((beginsWord && isOneOf(*left, "AIa") && mayBeBeside(*right)) ||
                                  (endsWord && isOneOf(*right, "AIa") && mayBeBeside(*left)));
}

/// Whether the pair's right one begins the year of a date, as no part of a number behind a comma does.
bool isBeforeYear(const std::vector<Symbol>& symbols, const Pair& pair) {
  constexpr std::ptrdiff_t digits = 4;
  const std::ptrdiff_t left = symbols.data() + symbols.size() - pair.right;
  if (pair.left->text != "," || left < digits || !(pair.right->text == "1" || pair.right->text == "2"))
    return false;
  const bool areDigits = std::all_of(pair.right, pair.right + digits, isDigit);
  return areDigits &&
         (left == digits || !isWordCharacter(pair.right[digits]) || pair.right[digits].spaceBefore);
}

/// Whether what was read as spaces around a pair is as wide as such: else symbols whose letters touch may
/// have been put with the ink beside theirs.
bool isSteady(const std::vector<Symbol>& symbols, const Gaps& gaps, std::size_t at, double space) {
  constexpr std::ptrdiff_t reach = 5;
  const std::ptrdiff_t right = gaps[at].pair.right - symbols.data();
  const Symbol* const first = symbols.data() + std::max<std::ptrdiff_t>(1, right - reach);
  const Symbol* const end =
      symbols.data() + std::min(static_cast<std::ptrdiff_t>(symbols.size()), right + reach + 1);
  for (const Symbol* symbol = first; symbol < end; ++symbol) {
    if (!symbol->spaceBefore) continue;
    const auto gap =
        std::find_if(gaps.begin(), gaps.end(), [&](const Gap& each) { return each.pair.right == symbol; });
    if (gap == gaps.end() || gap->width < 0.6 * space) return false;
  }
  return true;
}

Bounds boundsOf(const std::vector<Symbol>& symbols, const Gap& gap) {
  constexpr double leastAtLoneLetter = 0.58;
  constexpr double leastBeforeYear = 0.4;
  constexpr double leastInSigns = 1.3;
  constexpr double mostAtBacktick = 0.6;
  constexpr double leastBehindDash = 0.6;
  const auto& [left, right] = gap.pair;
  Bounds bounds = boundsByKind(kindOf(*left), kindOf(*right));
  if (isAtLoneLetter(symbols, gap)) bounds.least = std::min(bounds.least, leastAtLoneLetter);
  // A double sign, marks side by side, or a sign that belongs to what is before it or, in a number, behind
  // it.
  const bool areAlike = kindOf(*left) == Kind::sign && left->text == right->text;
  const bool areMarks = isOneOf(*left, "'\"`") && isOneOf(*right, "'\"`");
  const bool isInNumber = isOneOf(*left, ".,") && isDigit(*right) && left != symbols.data() &&
                          !left->spaceBefore && isDigit(*(left - 1));
  if (areAlike || areMarks || isInNumber || isOneOf(*right, ".,;:"))
    bounds.least = std::max(bounds.least, leastInSigns);
  if (isBeforeYear(symbols, gap.pair)) bounds.least = leastBeforeYear;
  // A dash before a point of a list; one before an option has no room behind it.
  if (left == symbols.data() && left->text == "-") bounds.least = leastBehindDash;
  // The mark is narrow in its place.
  if (left->text == "`" || right->text == "`") bounds.most = mostAtBacktick;
  return bounds;
}

/// Whether the ink tells enough of a pair. Of letters that touch only the outer edges are known, and which of
/// them is where may be a slip.
bool isCertain(const std::vector<Symbol>& symbols, const Gaps& gaps, std::size_t at, double space) {
  const auto& [left, right] = gaps[at].pair;
  if (gaps[at].pair.isOfOwnInk()) return true;
  const bool isClear = isDigit(*left) || isDigit(*right) ||
                       ((left->isLikely || right->isLikely) && isAtLoneLetter(symbols, gaps[at]));
  return !right->spaceBefore && isClear && isSteady(symbols, gaps, at, space);
}

void correctByWidth(const std::vector<Symbol>& symbols, const Gaps& gaps, double space) {
  // Where the engine sees none in so much room, a symbol isn't where it seems to be.
  constexpr double mostSpaces = 3;
  for (std::size_t i = 0; i < gaps.size(); ++i) {
    Symbol* const right = gaps[i].pair.right;
    if (!right->spaceBefore && gaps[i].width > mostSpaces * space) continue;
    if (!isCertain(symbols, gaps, i, space)) continue;
    const Bounds bounds = boundsOf(symbols, gaps[i]);
    bool& isSpace = right->spaceBefore;
    isSpace = gaps[i].width > space * (isSpace ? bounds.most : bounds.least);
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
  std::vector<Gaps> gaps;
  for (const SpacedLine& line : lines) gaps.push_back(line.line->cells ? Gaps{} : gapsOf(line));
  const std::vector<double> inWords = measure(gaps, widthsWithinWords, 0.136, 6);
  for (std::size_t i = 0; i < lines.size(); ++i)
    for (Gap& gap : gaps[i]) gap.width -= inWords[i];
  const std::vector<double> spaces = measure(gaps, widthsOfSpaces, 0.47, 2);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::vector<Pair> pairs = pairsOf(*lines[i].symbols);
    if (lines[i].line->cells) {
      correctByPitch(pairs, lines[i].line->cells->pitch);
      continue;
    }
    correctByWidth(*lines[i].symbols, gaps[i], spaces[i]);
    joinFixedWidth(pairs);
  }
}

}  // namespace lumiscan::desktop
