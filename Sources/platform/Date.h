#pragma once

namespace lumiscan::platform {

/// A moment. A plain value; any thread.
struct Date {
  /// Seconds since 2001-01-01 00:00:00 UTC; negative before.
  double timeIntervalSinceReferenceDate = 0;

  /// The installed desktop's clock.
  static Date now();

  friend bool operator==(const Date&, const Date&) = default;
};

}  // namespace lumiscan::platform
