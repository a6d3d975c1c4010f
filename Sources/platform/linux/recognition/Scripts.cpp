#include "platform/linux/recognition/Scripts.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

char32_t codePointOf(const Symbol& symbol) { return onlyCodePoint(symbol.text); }

bool isIdeograph(char32_t c) { return (c >= 0x3400 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF); }
bool isKana(char32_t c) { return c >= 0x3041 && c <= 0x30FF; }
bool isHangul(char32_t c) {
  return (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0x1100 && c <= 0x11FF) || (c >= 0x3131 && c <= 0x318E);
}

/// Brackets, stops and the like that take the width of a character, with much of it free.
bool isWideSign(char32_t c) { return (c >= 0x3000 && c <= 0x3011) || (c >= 0xFF00 && c <= 0xFF65); }

/// The narrow signs that the models of Chinese read for wide ones.
constexpr std::pair<std::string_view, std::string_view> wideSigns[] = {
    {",", "，"}, {":", "："}, {";", "；"}, {"!", "！"}, {"?", "？"}, {"(", "（"}, {")", "）"},
};

std::string_view wideSignFor(std::string_view text) {
  for (const auto& [narrow, wide] : wideSigns)
    if (text == narrow) return wide;
  return {};
}

}  // namespace

bool isWideText(const std::vector<Symbol>& symbols) {
  std::size_t wide = 0;
  std::size_t others = 0;
  for (const Symbol& symbol : symbols) {
    const char32_t c = codePointOf(symbol);
    (isIdeograph(c) || isKana(c) || isHangul(c) ? wide : others) += 1;
  }
  return 4 * wide > others;
}

void correctWideText(std::vector<Symbol>& symbols) {
  const auto has = [&](bool (*is)(char32_t)) {
    return std::any_of(symbols.begin(), symbols.end(),
                       [&](const Symbol& symbol) { return is(codePointOf(symbol)); });
  };
  // Korean is set with narrow signs, and Japanese with either, which its model tells apart.
  if (!has(isHangul) && !has(isKana)) {
    for (std::size_t i = 1; i < symbols.size(); ++i) {
      const std::string_view wide = wideSignFor(symbols[i].text);
      const char32_t before = codePointOf(symbols[i - 1]);
      const bool closes =
          wide == "）" && std::any_of(symbols.begin(), symbols.begin() + static_cast<std::ptrdiff_t>(i),
                                      [](const Symbol& symbol) { return symbol.text == "（"; });
      if (!wide.empty() && (isIdeograph(before) || isWideSign(before) || closes)) symbols[i].text = wide;
    }
  }
  // A comma is followed by no other; the room behind it is read as one.
  const auto doubled =
      std::adjacent_find(symbols.begin(), symbols.end(),
                         [](const Symbol& a, const Symbol& b) { return a.text == "、" && b.text == "、"; });
  if (doubled != symbols.end()) symbols.erase(doubled);
  for (std::size_t i = 1; i < symbols.size(); ++i)
    if (isWideSign(codePointOf(symbols[i])) || isWideSign(codePointOf(symbols[i - 1])))
      symbols[i].spaceBefore = false;
}

}  // namespace lumiscan::desktop
