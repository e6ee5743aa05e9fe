#include "varnel/dates/VNLDateUtility.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include "SystemDateFormatter.h"

namespace varnel {
namespace {

using Component = VNLDateUtility::CalendarComponent;

constexpr double kMillisPerSecond = 1000.0;
// Dates are kept within five million years of 1970, well inside what the
// calendar can compute without overflowing its day numbers.
constexpr double kDaysPerYear = 365.2425;
constexpr double kLimitInDays = 5'000'000 * kDaysPerYear;
constexpr double kLimitInMillis = kLimitInDays * 86'400'000.0;

std::optional<UDate> toUDate(Date date) {
  const double millis = date.timeIntervalSince1970 * kMillisPerSecond;
  if (!std::isfinite(millis) || std::fabs(millis) > kLimitInMillis) return std::nullopt;
  return millis;
}

/// Whether the calendar can build a date from these fields (month 0-based).
bool withinCalendarLimits(int32_t year, int32_t month, int32_t day, int32_t minute) {
  const double days = (year - 1970.0) * kDaysPerYear + month * (kDaysPerYear / 12) + day +
                      minute / (24.0 * 60.0);
  return std::fabs(days) < kLimitInDays;
}

Date fromUDate(UDate millis) { return Date::fromTimeIntervalSince1970(millis / kMillisPerSecond); }

/// The device's calendar: Gregorian in the current default time zone.
std::unique_ptr<icu::Calendar> deviceCalendar() {
  UErrorCode status = U_ZERO_ERROR;
  auto calendar = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createDefault(),
                                                           icu::Locale("en_US_POSIX"), status);
  if (U_FAILURE(status)) return nullptr;
  return calendar;
}

/// `value + amount` when it fits the calendar's 32-bit fields.
std::optional<int32_t> addField(int32_t value, std::int64_t amount) {
  constexpr auto lowest = std::numeric_limits<int32_t>::min();
  constexpr auto highest = std::numeric_limits<int32_t>::max();
  if (amount > highest - static_cast<std::int64_t>(value) ||
      amount < lowest - static_cast<std::int64_t>(value)) {
    return std::nullopt;
  }
  return static_cast<int32_t>(value + amount);
}

/// The first moment of the day of `millis` in the calendar's zone.
std::optional<UDate> startOfDay(icu::Calendar& calendar, UDate millis) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(millis, status);
  for (auto field : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND}) {
    calendar.set(field, 0);
  }
  const UDate start = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return start;
}

}  // namespace

Date VNLDateUtility::date(std::string_view from, std::string_view dateFormat) {
  dates::SystemDateFormatter* shared = dates::systemFormatterWithFormat(dateFormat);
  if (shared == nullptr || from.size() > static_cast<std::size_t>(INT32_MAX)) return defaultDate();
  icu::TimeZone* deviceZone = icu::TimeZone::createDefault();
  if (deviceZone == nullptr) return defaultDate();
  shared->parseCalendar->adoptTimeZone(deviceZone->clone());
  shared->formatter->adoptTimeZone(deviceZone);

  const auto text =
      icu::UnicodeString::fromUTF8(icu::StringPiece(from.data(), static_cast<int32_t>(from.size())));
  icu::Calendar& calendar = *shared->parseCalendar;
  calendar.clear();
  icu::ParsePosition position(0);
  shared->formatter->parse(text, calendar, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != text.length()) return defaultDate();
  UErrorCode status = U_ZERO_ERROR;
  const UDate millis = calendar.getTime(status);
  if (U_FAILURE(status)) return defaultDate();
  return fromUDate(millis);
}

Date VNLDateUtility::shortDate(std::string_view from, std::string_view dateFormat) {
  return date(from, dateFormat);
}

std::string VNLDateUtility::dateString(Date from, std::string_view dateFormat) {
  dates::SystemDateFormatter* shared = dates::systemFormatterWithFormat(dateFormat);
  const auto millis = toUDate(from);
  if (shared == nullptr || !millis) return {};
  icu::UnicodeString text;
  shared->formatter->format(*millis, text);
  std::string result;
  text.toUTF8String(result);
  return result;
}

Date VNLDateUtility::defaultDate() { return Date::unknownMarker(); }

Date VNLDateUtility::yearsFromNow(std::int64_t numberOfYears) {
  return dateFromOffset(Date::now(), Component::year, numberOfYears);
}

Date VNLDateUtility::daysFromNow(std::int64_t numberOfDays) {
  return dateFromOffset(Date::now(), Component::day, numberOfDays);
}

Date VNLDateUtility::minutesFromNow(std::int64_t numberOfMinutes) {
  return dateFromOffset(Date::now(), Component::minute, numberOfMinutes);
}

Date VNLDateUtility::offsetDateYears(std::int64_t by, Date date) {
  return dateFromOffset(date, Component::year, by);
}

Date VNLDateUtility::offsetDateMonths(std::int64_t by, Date date) {
  return dateFromOffset(date, Component::month, by);
}

Date VNLDateUtility::offsetDateDays(std::int64_t by, Date date) {
  return dateFromOffset(date, Component::day, by);
}

Date VNLDateUtility::offsetDateMinutes(std::int64_t by, Date date) {
  return dateFromOffset(date, Component::minute, by);
}

std::int64_t VNLDateUtility::daysBetween(Date initialDate, Date finalDate) {
  const auto initialMillis = toUDate(initialDate);
  const auto finalMillis = toUDate(finalDate);
  auto calendar = deviceCalendar();
  if (!initialMillis || !finalMillis || !calendar) return 0;
  // A day whose midnight is skipped by a clock change starts at the first
  // moment after the gap.
  calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);

  const auto finalStart = startOfDay(*calendar, *finalMillis);
  const auto initialStart = startOfDay(*calendar, *initialMillis);
  if (!finalStart || !initialStart) return 0;

  // Years first, then months, leaving the days that remain.
  UErrorCode status = U_ZERO_ERROR;
  calendar->fieldDifference(*finalStart, UCAL_YEAR, status);
  calendar->fieldDifference(*finalStart, UCAL_MONTH, status);
  const int32_t days = calendar->fieldDifference(*finalStart, UCAL_DATE, status);
  return U_SUCCESS(status) ? days : 0;
}

Date VNLDateUtility::dateFromOffset(Date start, CalendarComponent calendarComponent,
                                    std::int64_t offsetAmount) {
  const auto startMillis = toUDate(start);
  auto calendar = deviceCalendar();
  if (!startMillis || !calendar) return defaultDate();

  UErrorCode status = U_ZERO_ERROR;
  calendar->setTime(*startMillis, status);
  std::optional<int32_t> year = calendar->get(UCAL_YEAR, status);
  std::optional<int32_t> month = calendar->get(UCAL_MONTH, status);
  std::optional<int32_t> day = calendar->get(UCAL_DATE, status);
  std::optional<int32_t> minute = calendar->get(UCAL_MINUTE, status);
  if (U_FAILURE(status)) return defaultDate();

  switch (calendarComponent) {
    case Component::year: year = addField(*year, offsetAmount); break;
    case Component::month: month = addField(*month, offsetAmount); break;
    case Component::day: day = addField(*day, offsetAmount); break;
    case Component::minute: minute = addField(*minute, offsetAmount); break;
    default: break;
  }
  if (!year || !month || !day || !minute || !withinCalendarLimits(*year, *month, *day, *minute)) {
    return defaultDate();
  }

  // Only these four are set: the hour and the seconds come back as zero.
  calendar->clear();
  calendar->set(UCAL_YEAR, *year);
  calendar->set(UCAL_MONTH, *month);
  calendar->set(UCAL_DATE, *day);
  calendar->set(UCAL_MINUTE, *minute);
  const UDate result = calendar->getTime(status);
  if (U_FAILURE(status) || !std::isfinite(result)) return defaultDate();
  return fromUDate(result);
}

}  // namespace varnel
