#include "platform/linux/recognition/Plausibility.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace lumiscan::desktop {

namespace {

/// Letters and digits, and all characters beyond ASCII but typographic marks.
std::size_t lettersIn(const std::string& text) {
  std::size_t count = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    // 0xC3 and up start the accented letters and other scripts; 0xE2 starts dashes, quotes and symbols.
    count += std::isalnum(byte) || (byte >= 0xC3 && byte != 0xE2);
  }
  return count;
}

/// Letters that touch make fewer pieces than symbols; what is no text is read piece by piece, if at all.
bool hasTouchingLetters(const ReadLine& line) { return 10 * line.pieces <= 8 * line.symbols; }

/// Whether there is a word of several different letters: patterns make the same few again and again, and
/// capitals amid small letters.
bool hasLongWord(const std::string& text) {
  constexpr std::size_t fewestLetters = 6;
  constexpr std::size_t fewestDifferent = 5;
  std::string word;
  bool afterSmall = false;
  for (const char c : text + ' ') {
    const bool isCapital = std::isupper(static_cast<unsigned char>(c));
    const bool goesOn = std::isalpha(static_cast<unsigned char>(c)) && !(isCapital && afterSmall);
    afterSmall = std::islower(static_cast<unsigned char>(c));
    if (goesOn) {
      word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      continue;
    }
    if (word.size() >= fewestLetters && std::set<char>(word.begin(), word.end()).size() >= fewestDifferent)
      return true;
    word.clear();
  }
  return false;
}

/// Whether the engine is sure of most of several characters, some of which make a word or a number. Rows of
/// icons are read as single characters.
bool isSureOfCharacters(const ReadLine& line) {
  constexpr std::size_t fewest = 5;
  constexpr std::size_t severalLikely = 3;
  const double leastSureness = line.likely >= severalLikely ? 90 : 95;
  constexpr int leastRun = 3;
  constexpr double leastConfidence = 60;
  if (line.symbols < fewest || line.sureness < leastSureness || line.pieces > line.symbols + 1) return false;
  // The line of a chart is read as a few letters that are alike.
  if (line.likely < severalLikely && line.confidence < leastConfidence && !hasLongWord(line.text))
    return false;
  int run = 0;
  return std::any_of(line.text.begin(), line.text.end(), [&](char c) {
    run = std::isalnum(static_cast<unsigned char>(c)) ? run + 1 : 0;
    return run >= leastRun;
  });
}

/// Whether the engine is sure of the characters of a word whose letters touch, though of none such as a word:
/// a version, a hash.
bool isSureOfTouching(const ReadLine& line) {
  constexpr std::size_t fewest = 5;
  return line.symbols >= fewest && hasTouchingLetters(line) &&
         line.sureness >= (2 * line.pieces <= line.symbols ? 75 : 93);
}

bool isSure(const ReadLine& line) {
  // Some icons look like letters, but the engine makes no sense of them.
  constexpr double fair = 65;
  if (line.likely >= 3 && 2 * line.likely >= line.symbols &&
      (4 * line.likely >= 3 * line.symbols || line.sureness >= fair || line.confidence >= fair))
    return true;
  const std::size_t letters = lettersIn(line.text);
  if (letters < 3 || (line.likely == 0 && !hasTouchingLetters(line))) return false;
  return line.confidence >= 85 ||
         (line.confidence >= 55 && hasTouchingLetters(line) && hasLongWord(line.text));
}

/// A key cap, a counter, a bracket: so little text that the engine must be very sure of it, or its shape.
bool isLoneLabel(const ReadLine& line) {
  const std::size_t letters = lettersIn(line.text);
  const bool isStroke = line.text.find_first_not_of("_-|Il. ") == std::string::npos;
  // Photographs have dots and edges, and there are more of them than selections of one colon or bracket.
  if (line.symbols == 1 && letters == 0 &&
      (line.confidence < 90 || line.text.find_first_of(":;()[]{}") != std::string::npos))
    return false;
  // A letter alone has a shape, but for the smallest.
  constexpr int small = 9;
  if (line.symbols == 1 && line.likely == 0 && line.letterHeight > small) return false;
  // Of words in letters of several heights only some look like themselves.
  if (letters >= 3 && line.likely >= 2 && 2 * line.likely >= line.symbols && line.sureness >= 88) return true;
  // A letter alone is hardly a word to the engine.
  const double leastAlone = letters == 1 && line.sureness >= 94 ? 30 : 70;
  const double leastOfShapes = line.symbols == 1 ? leastAlone : letters > 1 ? 20 : 40;
  if (line.likely == line.symbols && !isStroke && line.confidence >= leastOfShapes) return true;
  // Small letters touch. Where the engine is sure of each, it is less so of a word that it doesn't know.
  if (letters > 1 && line.pieces < line.symbols && line.sureness >= 98 &&
      line.confidence >= (line.symbols > 2 ? 65 : 75))
    return true;
  // The engine is as sure of a path as of its worst character.
  const double least = hasTouchingLetters(line) && letters >= 6 ? 70 : 85;
  return line.confidence >= least && 2 * letters >= line.symbols && line.pieces <= line.symbols;
}

}  // namespace

void dropImplausible(std::vector<ReadLine>& lines) {
  constexpr std::size_t mostLabels = 3;
  const bool areFew = lines.size() <= mostLabels;
  std::vector<int> sureHeights;
  std::size_t symbols = 0, sure = 0;
  for (const ReadLine& line : lines) {
    symbols += line.symbols;
    if (!isSure(line) && !(areFew && isSureOfCharacters(line))) continue;
    sureHeights.push_back(line.letterHeight);
    sure += line.symbols;
  }
  // Amid what was read into a photograph, lines that seem sure vouch for nothing but themselves.
  constexpr std::size_t leastShare = 12;
  if (!areFew && leastShare * sure < symbols) {
    std::erase_if(lines, [](const ReadLine& line) { return !isSure(line) || lettersIn(line.text) < 3; });
    return;
  }
  if (sureHeights.empty()) {
    // What looks like a character beside what is none is no text either.
    const bool areLabels = std::all_of(lines.begin(), lines.end(), isLoneLabel);
    std::erase_if(lines, [areLabels](const ReadLine& line) {
      return !isLoneLabel(line) || (!areLabels && line.symbols == 1);
    });
    return;
  }
  const auto [smallest, largest] = std::minmax_element(sureHeights.begin(), sureHeights.end());
  std::erase_if(lines, [smallest = *smallest, largest = *largest](const ReadLine& line) {
    constexpr double leastConfidence = 20;
    const bool isOfTheirSize = 3 * line.letterHeight >= smallest && line.letterHeight <= 3 * largest;
    const bool isRead = line.confidence >= leastConfidence || 2 * line.likely >= line.symbols ||
                        (hasTouchingLetters(line) && hasLongWord(line.text)) || isSureOfTouching(line);
    // A line most of which are points seems to be of smaller letters.
    return !isRead || (!isOfTheirSize && !isLoneLabel(line) && !isSureOfCharacters(line));
  });
}

}  // namespace lumiscan::desktop
