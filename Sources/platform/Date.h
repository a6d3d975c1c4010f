#pragma once

namespace lumiscan::platform {

/// A moment. A plain value; any thread.
struct Date {
  /// The reference date, 2001-01-01 00:00:00 UTC, in seconds since 1970.
  static constexpr double referenceDateSince1970 = 978307200;

  /// Seconds since the reference date; negative before.
  double timeIntervalSinceReferenceDate = 0;

  /// The installed desktop's clock.
  static Date now();

  friend bool operator==(const Date&, const Date&) = default;
};

}  // namespace lumiscan::platform
