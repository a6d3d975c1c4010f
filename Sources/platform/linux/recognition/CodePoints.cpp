#include "platform/linux/recognition/CodePoints.h"

#include <unicode/unistr.h>

namespace lumiscan::desktop {

char32_t onlyCodePoint(std::string_view text) {
  constexpr char32_t none = 0xFFFD;
  const auto decoded =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  return decoded.countChar32() == 1 ? static_cast<char32_t>(decoded.char32At(0)) : none;
}

std::string utf8Of(char32_t codePoint) {
  std::string text;
  icu::UnicodeString(static_cast<UChar32>(codePoint)).toUTF8String(text);
  return text;
}

}  // namespace lumiscan::desktop
