#include "capture/LastSelection.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace lumiscan {

namespace {

using platform::DisplayID;

/// The shortest digits that read back as the same number.
std::string shortest(double value) {
  char digits[32];
  return {digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr};
}

void appendPair(std::string& json, double first, double second) {
  json += '[';
  json += shortest(first);
  json += ',';
  json += shortest(second);
  json += ']';
}

std::optional<DisplayID> displayNumber(const nlohmann::json& value) {
  if (!value.is_number()) return std::nullopt;
  const double number = value.get<double>();
  if (!(number >= 0 && number <= std::numeric_limits<DisplayID>::max())) return std::nullopt;
  if (number != std::trunc(number)) return std::nullopt;
  return static_cast<DisplayID>(number);
}

bool isPairOfNumbers(const nlohmann::json& value) {
  return value.is_array() && value.size() == 2 && value[0].is_number() && value[1].is_number();
}

}  // namespace

std::optional<std::string> encoded(const LastSelection& selection) {
  const auto& [origin, size] = selection.rect;
  for (const double value : {origin.x, origin.y, size.width, size.height})
    if (!std::isfinite(value)) return std::nullopt;
  std::string json = "{\"displayID\":";
  json += std::to_string(selection.displayID);
  json += ",\"rect\":[";
  appendPair(json, origin.x, origin.y);
  json += ',';
  appendPair(json, size.width, size.height);
  json += "]}";
  return json;
}

std::optional<LastSelection> decodedLastSelection(std::string_view text) {
  const auto document = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!document.is_object() || !document.contains("displayID") || !document.contains("rect"))
    return std::nullopt;
  const auto display = displayNumber(document["displayID"]);
  const nlohmann::json& rect = document["rect"];
  if (!display || !rect.is_array() || rect.size() != 2 || !isPairOfNumbers(rect[0]) ||
      !isPairOfNumbers(rect[1]))
    return std::nullopt;
  return LastSelection{*display,
                       {{rect[0][0].get<double>(), rect[0][1].get<double>()},
                        {rect[1][0].get<double>(), rect[1][1].get<double>()}}};
}

}  // namespace lumiscan
