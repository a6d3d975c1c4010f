#include "platform/linux/recognition/Numbers.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/linux/recognition/Spacing.h"

namespace lumiscan::desktop {

namespace {

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool isHexadecimal(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

/// The digit that a letter or sign is easily taken for; other characters are their own.
char digitFor(char c) {
  // Some fonts have a dot or a stroke in their zero.
  if (c == 'O' || c == '@') return '0';
  return c == 'l' || c == 'I' ? '1' : c;
}

std::string withDigits(std::string_view text) {
  std::string digits;
  std::transform(text.begin(), text.end(), std::back_inserter(digits), digitFor);
  return digits;
}

/// How many characters at the start of a word are 0x and hexadecimal digits, of which only a type may follow;
/// 0 for what is no number, as @x86_name and Oxford.
std::size_t hexadecimalDigits(std::string_view word) {
  if (word.size() < 3 || digitFor(word[0]) != '0' || word[1] != 'x' || !isHexadecimal(word[2])) return 0;
  std::size_t end = 2;
  while (end < word.size() && (isHexadecimal(word[end]) || word[end] == 'O')) ++end;
  return word.find_first_not_of("uUlL", end) == std::string_view::npos ? end : 0;
}

/// What follows the # of a colour, whose digits may have been taken for letters; but one digit there must be.
bool isColour(std::string_view word) {
  if (word.size() != 3 && word.size() != 6 && word.size() != 8) return false;
  const std::string digits = withDigits(word);
  return std::all_of(digits.begin(), digits.end(), isHexadecimal) &&
         std::any_of(word.begin(), word.end(), isDigit);
}

/// How many characters before the unit of a length are its digits; 0 where it is none, as @em.
std::size_t digitsOfLength(std::string_view word) {
  if (word.starts_with('@')) return 0;
  for (const std::string_view unit : {"px", "rem", "em"}) {
    if (word.size() <= unit.size() || !word.ends_with(unit)) continue;
    const std::string digits = withDigits(word.substr(0, word.size() - unit.size()));
    if (std::all_of(digits.begin(), digits.end(), isDigit)) return digits.size();
  }
  return 0;
}

/// Characters side by side: letters, digits and underscores, perhaps after an @.
struct Word {
  Symbol* symbols;
  std::string text;  // A character for each symbol; a blank for what is none of ASCII.
  bool isAfterHash;
};

void correctWord(const Word& word) {
  std::size_t count = word.isAfterHash && isColour(word.text) ? word.text.size() : 0;  // Digits at its start.
  if (count == 0) count = hexadecimalDigits(word.text);
  if (count == 0) count = digitsOfLength(word.text);
  for (std::size_t i = 0; i < count; ++i) word.symbols[i].text.assign(1, digitFor(word.text[i]));
}

}  // namespace

void correctNumbers(std::vector<Symbol>& symbols) {
  const auto isPart = [](const Symbol& symbol) { return isWordCharacter(symbol) || symbol.text == "@"; };
  for (std::size_t i = 0; i < symbols.size();) {
    if (!isPart(symbols[i])) {
      ++i;
      continue;
    }
    const bool isAfterHash = i > 0 && !symbols[i].spaceBefore && symbols[i - 1].text == "#";
    Word word{&symbols[i], {}, isAfterHash};
    do {
      word.text += symbols[i].text.size() == 1 ? symbols[i].text.front() : ' ';
      ++i;
    } while (i < symbols.size() && !symbols[i].spaceBefore && isPart(symbols[i]));
    correctWord(word);
  }
}

}  // namespace lumiscan::desktop
