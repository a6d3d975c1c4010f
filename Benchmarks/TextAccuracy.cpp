#include "TextAccuracy.h"

#include <algorithm>
#include <numeric>

namespace lumiscan::benchmark {

namespace {

std::u32string codePoints(std::string_view text) {
  std::u32string points;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0) != 0x80)
      points += static_cast<char32_t>(value < 0x80 ? value : value < 0xE0 ? value & 31 : value & 15);
    else if (!points.empty())
      points.back() = points.back() << 6 | (value & 63);
  }
  return points;
}

/// Levenshtein's distance.
std::size_t distance(const std::u32string& a, const std::u32string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0U : 1U)});
      diagonal = above;
    }
  }
  return row.back();
}

/// The length of the longest sequence of lines that both have in the same order.
std::size_t commonLines(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (const std::string& line : a) {
    std::size_t diagonal = 0;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = line == b[j - 1] ? diagonal + 1 : std::max(above, row[j - 1]);
      diagonal = above;
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

void TextAccuracy::add(std::string_view truth, std::string_view reading) {
  while (truth.ends_with('\n')) truth.remove_suffix(1);
  const std::u32string expected = codePoints(truth);
  errors_ += distance(expected, codePoints(reading));
  characters_ += expected.size();
  const std::vector<std::string> expectedLines = linesOf(truth);
  lines_ += expectedLines.size();
  exactLines_ += commonLines(expectedLines, linesOf(reading));
}

double TextAccuracy::characterErrorRate() const {
  return characters_ == 0 ? 0 : static_cast<double>(errors_) / static_cast<double>(characters_);
}

double TextAccuracy::exactLineShare() const {
  return lines_ == 0 ? 0 : static_cast<double>(exactLines_) / static_cast<double>(lines_);
}

}  // namespace lumiscan::benchmark
