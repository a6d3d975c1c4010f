#include "platform/linux/recognition/Utf8.h"

#include <unicode/unistr.h>

namespace lumiscan::desktop {

std::string repairedUtf8(std::string_view text) {
  std::string repaired;
  icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())))
      .toUTF8String(repaired);
  return repaired;
}

}  // namespace lumiscan::desktop
