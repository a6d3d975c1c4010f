#include "recognition/TextLines.h"

namespace lumiscan {

std::size_t endOfLine(std::string_view text, std::size_t from) {
  for (auto i = text.find('\n', from); i != std::string_view::npos; i = text.find('\n', i + 1))
    if (i == 0 || text[i - 1] != '\r') return i;
  return text.size();
}

}  // namespace lumiscan
