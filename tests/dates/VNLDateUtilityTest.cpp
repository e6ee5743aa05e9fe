#include <gtest/gtest.h>
#include <unicode/smpdtfmt.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "DeviceTimeZone.h"
#include "varnel/dates/VNLDateUtility.h"

namespace varnel {
namespace {

using testing::wallTime;
using U = VNLDateUtility;
constexpr int kEST = -5, kEDT = -4;  // New York in winter, in summer
constexpr auto kLong = VNLEntitlementDateFormatterFormatString;
constexpr auto kShort = VNLEntitlementDateFormatterFormatStringShort;

class VNLDateUtilityTest : public ::testing::Test {
 protected:
  testing::DeviceTimeZone newYork{"America/New_York"};
  const Date unknown = U::defaultDate();
};

/// What a stock, strict ICU formatter makes of the whole text, or the unknown date.
Date stockIcuParse(const std::string& text, std::string_view format) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat stock(icu::UnicodeString::fromUTF8(std::string(format)), icu::Locale("en_US_POSIX"), status);
  stock.setLenient(false);
  const auto unicodeText = icu::UnicodeString::fromUTF8(text);
  icu::ParsePosition position(0);
  const UDate millis = stock.parse(unicodeText, position);
  const bool whole = U_SUCCESS(status) && position.getErrorIndex() < 0 && position.getIndex() == unicodeText.length();
  return whole ? Date{millis / 1000.0} : U::defaultDate();
}

TEST_F(VNLDateUtilityTest, ParsesLikeAStockFormatterAndMarksFailuresUnknown) {
  const Date instant = wallTime(2024, 3, 10, 14, 35, 20.25);
  EXPECT_EQ(U::date("2024-03-10T10:35:20.250-0400"), instant);
  // The short format's "Z" is a literal: the time is read as device time.
  EXPECT_EQ(U::shortDate("2024-03-10T14:35:20Z"), wallTime(2024, 3, 10, 14, 35, 20, kEDT));
  EXPECT_EQ(U::date("2024-01-10T14:35:20Z", kShort), wallTime(2024, 1, 10, 14, 35, 20, kEST));
  EXPECT_EQ(U::date("garbage"), Date::fromTimeIntervalSince1970(1.0));
  // 02:30 does not exist in New York on the morning the clocks go forward.
  EXPECT_EQ(U::shortDate("2024-03-10T02:30:00Z"), unknown);

  const std::string longTexts[] = {
      "2024-03-10T14:35:20.250Z", "2024-3-1T4:5:6.7+0000", "2024-03-10T14:35:20.25-0400", "2024", "",
      "2024-03-10T14:35:20.2500-0400", "02024-03-10T14:35:20.250-0400", "2024-13-10T14:35:20.250-0400",
      "2024-02-30T14:35:20.250-0400", "-2024-03-10T14:35:20.250-0400", "2024-03-10T14:35:20.250",
      "2024-03-+1T14:35:20.250-0400", "\xd9\xa2\xd9\xa0\xd9\xa2\xd9\xa4-03-10T14:35:20.250-0400",
      "9999999999-03-10T14:35:20.250-0400", "2024-03-10T14:35:20.000+0000 x", "2024-03-10T14:35:20.000Z\xff",
      std::string("2024-03-10T14:35:20.000+0000\0x", 30)};
  for (const auto& text : longTexts) EXPECT_EQ(U::date(text), stockIcuParse(text, kLong)) << text;
  for (const char* text : {"2024-03-10T14:35:20+0000", "2024-03-10T24:00:00Z", "2024-03-10 14:35:20Z"}) {
    EXPECT_EQ(U::shortDate(text), stockIcuParse(text, kShort)) << text;
  }
}

TEST_F(VNLDateUtilityTest, FormatsInTheZoneOfTheThreadsLastParse) {
  const Date instant = wallTime(2024, 7, 4, 16, 5, 9.5);
  const std::string text = U::dateString(instant, kLong);
  EXPECT_EQ(text, "2024-07-04T12:05:09.500-0400");
  testing::DeviceTimeZone nineHoursAhead{"Etc/GMT-9"};
  EXPECT_EQ(U::dateString(instant, kLong), text);
  EXPECT_EQ(U::date(text), instant);
  EXPECT_EQ(U::dateString(instant, kLong), "2024-07-05T01:05:09.500+0900");
  EXPECT_EQ(U::dateString(wallTime(7, 6, 1, 0, 0, 0), "yyyy"), "0007");
  EXPECT_EQ(U::dateString(Date{std::nan("")}, kLong), "");
}

TEST_F(VNLDateUtilityTest, EachThreadRoundTripsItsOwnDates) {
  std::atomic<int> wrong = 0;
  std::vector<std::jthread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &wrong] {
      for (int round = 0; round < 300; ++round) {
        const Date instant = wallTime(2020 + t, 1 + round % 12, 1 + round % 28, t, round % 60, t);
        wrong += U::date(U::dateString(instant, kLong)) != instant;
      }
    });
  }
  threads.clear();  // joins them
  EXPECT_EQ(wrong, 0);
}

TEST_F(VNLDateUtilityTest, OffsetsDropTheHourAndSecondsOfTheStart) {
  const Date afternoon = wallTime(2024, 3, 10, 14, 35, 20, kEDT);
  EXPECT_EQ(U::offsetDateDays(1, afternoon), wallTime(2024, 3, 11, 0, 35, 0, kEDT));
  EXPECT_EQ(U::offsetDateDays(-1, afternoon), wallTime(2024, 3, 9, 0, 35, 0, kEST));
  EXPECT_EQ(U::offsetDateMinutes(-40, afternoon), wallTime(2024, 3, 9, 23, 55, 0, kEST));
  EXPECT_EQ(U::dateFromOffset(afternoon, U::CalendarComponent::hour, 5), wallTime(2024, 3, 10, 0, 35, 0, kEST));
  // 01:30 EST on the autumn change (the repeated hour) still keeps its day.
  EXPECT_EQ(U::offsetDateDays(0, wallTime(2024, 11, 3, 1, 30, 0, kEST)), wallTime(2024, 11, 3, 0, 30, 0, kEDT));
  // Overflowing fields roll over; unbuildable dates are unknown.
  EXPECT_EQ(U::offsetDateYears(1, wallTime(2024, 2, 29, 9, 15, 0, kEST)), wallTime(2025, 3, 1, 0, 15, 0, kEST));
  EXPECT_EQ(U::offsetDateYears(std::numeric_limits<std::int64_t>::max(), afternoon), unknown);
  EXPECT_EQ(U::offsetDateDays(1, Date{std::numeric_limits<double>::infinity()}), unknown);
}

TEST_F(VNLDateUtilityTest, DaysBetweenIsTheDayPartOfTheCalendarDifference) {
  const Date mid = wallTime(2024, 1, 15, 12, 0, 0, kEST), lateEvening = wallTime(2024, 5, 1, 23, 30, 0, kEDT);
  const std::tuple<Date, Date, std::int64_t> rows[] = {
      {lateEvening, wallTime(2024, 5, 1, 0, 5, 0, kEDT), 0}, {lateEvening, wallTime(2024, 5, 2, 0, 5, 0, kEDT), 1},
      {wallTime(2024, 5, 2, 0, 5, 0, kEDT), lateEvening, -1}, {mid, Date{std::nan("")}, 0},
      // 47 hours across the spring change are two calendar days.
      {wallTime(2024, 3, 9, 0, 0, 0, kEST), wallTime(2024, 3, 11, 0, 0, 0, kEDT), 2},
      // Whole months and years are not counted.
      {mid, wallTime(2024, 3, 20, 12, 0, 0, kEDT), 5}, {mid, wallTime(2025, 1, 15, 12, 0, 0, kEST), 0},
  };
  for (const auto& [from, to, days] : rows) EXPECT_EQ(U::daysBetween(from, to), days) << from.timeIntervalSince1970;
}

}  // namespace
}  // namespace varnel
