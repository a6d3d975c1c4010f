#include "platform/linux/recognition/LetterHeights.h"

#include <utility>

#include "platform/linux/recognition/Level.h"

namespace lumiscan::desktop {

int medianHeight(const std::vector<Symbol>& symbols, std::string_view characters) {
  std::vector<int> heights;
  for (const Symbol& symbol : symbols)
    if (symbol.hasOwnInk && symbol.text.size() == 1 && characters.find(symbol.text) != std::string_view::npos)
      heights.push_back(symbol.box.height());
  return heights.empty() ? 0 : levelAt(std::move(heights), 0.5);
}

}  // namespace lumiscan::desktop
