#include "platform/linux/recognition/Plausibility.h"

#include <algorithm>
#include <cctype>

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

bool isSure(const ReadLine& line) {
  const std::size_t letters = lettersIn(line.text);
  if (letters < 3 || line.glyphs > 4 * line.symbols) return false;
  if (line.confidence >= 85) return true;
  // Patterns make a few letters now and then, but hardly many, and hardly letters alone.
  if (line.confidence >= 75) return 2 * letters >= line.symbols;
  return line.confidence >= 60 && letters >= 8 && 4 * letters >= 3 * line.symbols;
}

/// A key cap, a counter: so little text that the engine must be very sure of it.
bool isLoneLabel(const ReadLine& line) {
  constexpr double leastConfidence = 85;
  return line.confidence >= leastConfidence && 2 * lettersIn(line.text) >= line.symbols &&
         line.glyphs <= 2 * line.symbols + 1;
}

}  // namespace

void dropImplausible(std::vector<ReadLine>& lines) {
  std::vector<int> sureHeights;
  for (const ReadLine& line : lines)
    if (isSure(line)) sureHeights.push_back(line.letterHeight);
  if (sureHeights.empty()) {
    constexpr std::size_t mostLabels = 3;
    if (lines.size() > mostLabels) return lines.clear();
    std::erase_if(lines, [](const ReadLine& line) { return !isLoneLabel(line); });
    return;
  }
  const auto [smallest, largest] = std::minmax_element(sureHeights.begin(), sureHeights.end());
  std::erase_if(lines, [smallest = *smallest, largest = *largest](const ReadLine& line) {
    constexpr double leastConfidence = 20;
    const bool ofTheirSize = 3 * line.letterHeight >= smallest && line.letterHeight <= 3 * largest;
    return line.confidence < leastConfidence || (!ofTheirSize && !isLoneLabel(line));
  });
}

}  // namespace lumiscan::desktop
