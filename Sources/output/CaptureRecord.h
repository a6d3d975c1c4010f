#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "capture/CaptureMode.h"
#include "platform/Date.h"
#include "platform/UUID.h"

namespace lumiscan {

/// One capture as the history keeps it. A plain value.
struct CaptureRecord {
  platform::UUID id;
  platform::Date date;  ///< When the capture finished.
  CaptureMode mode = CaptureMode::text;
  std::string text;  ///< What the capture alone put on the pasteboard; UTF-8.
  friend bool operator==(const CaptureRecord&, const CaptureRecord&) = default;
};

/// The records as a JSON array, in their order: what the preferences hold. Invalid UTF-8 becomes U+FFFD.
/// Nothing when a date isn't finite.
std::optional<std::string> encoded(const std::vector<CaptureRecord>& records);

/// The records of such a document, however its members are ordered and whatever others there are. Nothing
/// when any record lacks a member or has one of another type or an unknown mode.
std::optional<std::vector<CaptureRecord>> decodedCaptureRecords(std::string_view json);

}  // namespace lumiscan
