#include "output/CaptureRecord.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace lumiscan {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// Whole seconds without a fraction; every other number with the shortest digits that read back as the same.
ordered_json jsonNumber(double value) {
  constexpr double everyIntegerUpTo = 9007199254740992;
  if (value == std::trunc(value) && std::abs(value) <= everyIntegerUpTo)
    return static_cast<std::int64_t>(value);
  return value;
}

std::optional<CaptureRecord> decodedRecord(const json& object) {
  if (!object.is_object()) return std::nullopt;
  for (const char* required : {"id", "date", "mode", "text"})
    if (!object.contains(required)) return std::nullopt;
  const json& id = object["id"];
  const json& date = object["date"];
  const json& mode = object["mode"];
  const json& text = object["text"];
  if (!id.is_string() || !date.is_number() || !mode.is_string() || !text.is_string()) return std::nullopt;
  const auto knownID = platform::UUID::fromString(id.get_ref<const std::string&>());
  const auto knownMode = captureMode(mode.get_ref<const std::string&>());
  if (!knownID || !knownMode) return std::nullopt;
  return CaptureRecord{*knownID, {date.get<double>()}, *knownMode, text.get<std::string>()};
}

}  // namespace

std::optional<std::string> encoded(const std::vector<CaptureRecord>& records) {
  auto array = ordered_json::array();
  for (const CaptureRecord& record : records) {
    const double seconds = record.date.timeIntervalSinceReferenceDate;
    if (!std::isfinite(seconds)) return std::nullopt;
    array.push_back({{"id", record.id.uuidString()},
                     {"date", jsonNumber(seconds)},
                     {"mode", rawValue(record.mode)},
                     {"text", record.text}});
  }
  return array.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::optional<std::vector<CaptureRecord>> decodedCaptureRecords(std::string_view text) {
  const json document = json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!document.is_array()) return std::nullopt;
  std::vector<CaptureRecord> records;
  for (const json& element : document) {
    auto record = decodedRecord(element);
    if (!record) return std::nullopt;
    records.push_back(*std::move(record));
  }
  return records;
}

}  // namespace lumiscan
