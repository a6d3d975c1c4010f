#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumiscan::platform {

/// A universally unique identifier. A plain value; any thread.
struct UUID {
  std::array<std::uint8_t, 16> bytes{};

  /// A new random one (version 4).
  static UUID random();
  /// That of the canonical textual form: 36 characters, hexadecimal digits of either case in groups of
  /// 8-4-4-4-12. Nothing for any other text.
  static std::optional<UUID> fromString(std::string_view text);
  /// The canonical form with upper-case digits.
  std::string uuidString() const;

  friend bool operator==(const UUID&, const UUID&) = default;
};

}  // namespace lumiscan::platform
