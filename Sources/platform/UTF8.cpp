#include "platform/UTF8.h"

#include <cstddef>

namespace lumiscan::platform {

namespace {

/// The length of the UTF-8 sequence that `text` starts with, or 0 when it isn't valid.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  // Overlong forms, surrogates and what lies beyond U+10FFFF show in the second byte.
  const unsigned second = byte(1);
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)) return 0;
  if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) return 0;
  return length;
}

}  // namespace

std::string validUTF8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    valid += length > 0 ? text.substr(0, length) : std::string_view("\uFFFD");
    text.remove_prefix(length > 0 ? length : 1);
  }
  return valid;
}

}  // namespace lumiscan::platform
