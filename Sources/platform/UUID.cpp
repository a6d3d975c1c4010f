#include "platform/UUID.h"

#include <cstddef>
#include <random>

namespace lumiscan::platform {

namespace {

constexpr std::size_t canonicalLength = 36;

constexpr bool isHyphenAt(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

std::optional<unsigned> digitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A') + 10;
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a') + 10;
  return std::nullopt;
}

}  // namespace

UUID UUID::random() {
  std::random_device source;
  UUID made;
  for (std::uint8_t& byte : made.bytes) byte = static_cast<std::uint8_t>(source());
  made.bytes[6] = static_cast<std::uint8_t>((made.bytes[6] & 0x0F) | 0x40);  // The version.
  made.bytes[8] = static_cast<std::uint8_t>((made.bytes[8] & 0x3F) | 0x80);  // The variant.
  return made;
}

std::optional<UUID> UUID::fromString(std::string_view text) {
  if (text.size() != canonicalLength) return std::nullopt;
  UUID read;
  std::size_t digits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isHyphenAt(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const auto value = digitValue(text[i]);
    if (!value) return std::nullopt;
    std::uint8_t& byte = read.bytes[digits++ / 2];
    byte = static_cast<std::uint8_t>(unsigned{byte} << 4 | *value);
  }
  return read;
}

std::string UUID::uuidString() const {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (isHyphenAt(text.size())) text += '-';
    text += "0123456789ABCDEF"[byte >> 4];
    text += "0123456789ABCDEF"[byte & 0x0F];
  }
  return text;
}

}  // namespace lumiscan::platform
