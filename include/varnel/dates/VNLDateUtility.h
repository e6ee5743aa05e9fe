#pragma once
// Date parsing, formatting and calendar arithmetic used by the entitlement and
// purchase code. Every operation is class-level, never fails and may run on
// any thread.

#include <cstdint>
#include <string>
#include <string_view>

#include "varnel/platform/Date.h"

namespace varnel {

/// The commerce and entitlement services' date format, with milliseconds and
/// a numeric zone ("2024-03-10T14:35:20.000-0400").
inline constexpr std::string_view VNLEntitlementDateFormatterFormatString =
    "yyyy-MM-dd'T'HH:mm:ss.SSSZ";
/// The short form, without milliseconds and with a literal "Z".
inline constexpr std::string_view VNLEntitlementDateFormatterFormatStringShort =
    "yyyy-MM-dd'T'HH:mm:ss'Z'";

class VNLDateUtility {
 public:
  /// Calendar components that the offset arithmetic understands. Only year,
  /// month, day and minute move a date; the others leave it as rebuilt.
  enum class CalendarComponent { era, year, month, day, hour, minute, second, weekOfYear, weekday };

  /// Parses `from` with `dateFormat` (en_US_POSIX, in the device's current
  /// time zone). The whole string must parse; otherwise defaultDate().
  static Date date(std::string_view from,
                   std::string_view dateFormat = VNLEntitlementDateFormatterFormatString);
  /// The same parse with the short format as default.
  static Date shortDate(std::string_view from,
                        std::string_view dateFormat = VNLEntitlementDateFormatterFormatStringShort);
  /// Formats `from` with `dateFormat`, in the zone the shared formatter
  /// carries (the device's zone when the formatter was made).
  static std::string dateString(Date from, std::string_view dateFormat);

  /// The module's unknown date: 1970-01-01 00:00:01 UTC.
  static Date defaultDate();

  /// Offsets from the current moment (see dateFromOffset for the hour rule).
  static Date yearsFromNow(std::int64_t numberOfYears);
  static Date daysFromNow(std::int64_t numberOfDays);
  static Date minutesFromNow(std::int64_t numberOfMinutes);

  /// Offsets from `date` (see dateFromOffset for the hour rule).
  static Date offsetDateYears(std::int64_t by, Date date);
  static Date offsetDateMonths(std::int64_t by, Date date);
  static Date offsetDateDays(std::int64_t by, Date date);
  static Date offsetDateMinutes(std::int64_t by, Date date);

  /// The day part of the calendar difference between the starts of the two
  /// days (not the total day count when they are a month or more apart).
  /// 0 when the calendar cannot tell.
  static std::int64_t daysBetween(Date initialDate, Date finalDate);

  /// Shared arithmetic: keeps only the year, month, day and minute of `start`
  /// in the device's calendar (hour and seconds are dropped, so the result is
  /// in hour 0 with the start's minute), adds `offsetAmount` to the requested
  /// component and rebuilds the date. defaultDate() when it cannot be built.
  static Date dateFromOffset(Date start, CalendarComponent calendarComponent,
                             std::int64_t offsetAmount);
};

}  // namespace varnel
