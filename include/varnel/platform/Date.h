#pragma once
// A moment in time, as the platform's date: seconds since 1970-01-01 00:00 UTC.

#include <compare>

namespace varnel {

struct Date {
  /// Seconds between 2001-01-01 00:00 UTC (the platform's reference date) and 1970.
  static constexpr double kReferenceDateOffset = 978307200.0;

  double timeIntervalSince1970 = 0.0;

  static Date now();
  static constexpr Date fromTimeIntervalSince1970(double seconds) { return Date{seconds}; }
  /// The module's marker for an unknown date: 1970-01-01 00:00:01 UTC.
  static constexpr Date unknownMarker() { return Date{1.0}; }

  constexpr double timeIntervalSinceReferenceDate() const {
    return timeIntervalSince1970 - kReferenceDateOffset;
  }
  constexpr Date addingTimeInterval(double seconds) const {
    return Date{timeIntervalSince1970 + seconds};
  }
  constexpr bool isUnknownMarker() const { return *this == unknownMarker(); }

  friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace varnel
