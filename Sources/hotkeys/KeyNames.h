#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace lumiscan {

/// The name shown for a key, by its virtual key code (a physical key; the names follow no keyboard layout);
/// nothing for a key without one.
std::optional<std::string_view> keyCodeName(std::uint32_t keyCode);

}  // namespace lumiscan
