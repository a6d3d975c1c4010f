#include "platform/linux/recognition/FileTypes.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/linux/recognition/Spacing.h"

namespace lumiscan::desktop {

namespace {

bool isSmallOrI(const Symbol& symbol) {
  return symbol.text == "I" ||
         (symbol.text.size() == 1 && symbol.text.front() >= 'a' && symbol.text.front() <= 'z');
}

}  // namespace

void correctFileTypes(std::vector<Symbol>& symbols) {
  // What is longer may be the name of a member, which may have capitals.
  constexpr std::size_t longestType = 4;
  for (std::size_t i = 1; i + 1 < symbols.size(); ++i) {
    if (symbols[i - 1].text != "." || symbols[i].spaceBefore) continue;
    std::size_t end = i;
    while (end < symbols.size() && isWordCharacter(symbols[end]) && (end == i || !symbols[end].spaceBefore))
      ++end;
    if (end - i < 3 || end - i > longestType) continue;
    const auto first = symbols.begin() + static_cast<std::ptrdiff_t>(i);
    const auto last = symbols.begin() + static_cast<std::ptrdiff_t>(end);
    if (!std::all_of(first, last, isSmallOrI) || first->text == "I" || (last - 1)->text == "I") continue;
    // In, Is or It at the end of a member's name.
    const bool isMember = end - i == longestType && (last - 2)->text == "I" &&
                          std::string_view("nst").find((last - 1)->text) != std::string_view::npos;
    const bool isCalled = end < symbols.size() && !symbols[end].spaceBefore && symbols[end].text == "(";
    if (isMember || isCalled) continue;
    for (auto symbol = first; symbol != last; ++symbol)
      if (symbol->text == "I") symbol->text.assign(1, 'l');
  }
}

}  // namespace lumiscan::desktop
