#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "DeviceTimeZone.h"
#include "support/Fakes.h"
#include "varnel/dates/VNLDateUtility.h"

namespace varnel {
namespace {

using testing::DeviceTimeZone;
using testing::wallTime;
using Component = VNLDateUtility::CalendarComponent;

constexpr int kEST = -5;  // New York in winter
constexpr int kEDT = -4;  // New York in summer
constexpr auto kShort = VNLEntitlementDateFormatterFormatStringShort;

class VNLDateUtilityTest : public testing::HostFixture {
 protected:
  DeviceTimeZone newYork{"America/New_York"};
  const Date unknown = VNLDateUtility::defaultDate();
};

TEST_F(VNLDateUtilityTest, ParsesBothServiceFormats) {
  const Date instant = wallTime(2024, 3, 10, 14, 35, 20.25);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T14:35:20.250+0000"), instant);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T14:35:20.250Z"), instant);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T10:35:20.250-0400"), instant);
  // The short format's "Z" is a literal: the time is read as device time.
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T14:35:20Z"), wallTime(2024, 3, 10, 14, 35, 20, kEDT));
  EXPECT_EQ(VNLDateUtility::shortDate("2024-01-10T14:35:20Z"), wallTime(2024, 1, 10, 14, 35, 20, kEST));
  EXPECT_EQ(VNLDateUtility::date("2024-01-10T14:35:20Z", kShort), wallTime(2024, 1, 10, 14, 35, 20, kEST));
}

TEST_F(VNLDateUtilityTest, AnythingThatDoesNotParseWholeIsTheUnknownDate) {
  EXPECT_EQ(unknown, Date::fromTimeIntervalSince1970(1.0));
  for (const std::string& text : std::vector<std::string>{"garbage", "", "2024-03-10T14:35:20.000+0000 trailing", "2024-03-10",
                                 "2024-03-10T14:35:20.000", "2024-02-30T14:35:20.000+0000",
                                 "2024-03-10T14:35:20.000+0000\xff", std::string("2024-03-10T14:35:20.000+0000\0x", 30)}) {
    EXPECT_EQ(VNLDateUtility::date(text), unknown) << text;
  }
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T14:35:20+0000"), unknown);
  // 02:30 does not exist in New York on the morning the clocks go forward.
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T02:30:00Z"), unknown);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10 x", "yyyy-MM-dd x"), unknown);
}

TEST_F(VNLDateUtilityTest, FormattingKeepsTheZoneOfTheLastParseOnTheThread) {
  const Date instant = wallTime(2024, 7, 4, 16, 5, 9.5);
  const auto format = VNLEntitlementDateFormatterFormatString;
  const std::string text = VNLDateUtility::dateString(instant, format);
  EXPECT_EQ(text, "2024-07-04T12:05:09.500-0400");
  EXPECT_EQ(VNLDateUtility::date(text), instant);

  DeviceTimeZone tokyo{"Asia/Tokyo"};
  EXPECT_EQ(VNLDateUtility::dateString(instant, format), "2024-07-04T12:05:09.500-0400");
  VNLDateUtility::date(text);
  EXPECT_EQ(VNLDateUtility::dateString(instant, format), "2024-07-05T01:05:09.500+0900");
  EXPECT_EQ(VNLDateUtility::dateString(Date{std::nan("")}, format), "");
}

TEST_F(VNLDateUtilityTest, ThreadsEachGetCorrectAnswers) {
  std::vector<int> wrong(4, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &wrong] {
      for (int round = 0; round < 300; ++round) {
        const Date instant = wallTime(2020 + t, 1 + round % 12, 1 + round % 28, t, round % 60, t);
        const auto text = VNLDateUtility::dateString(instant, VNLEntitlementDateFormatterFormatString);
        if (VNLDateUtility::date(text) != instant) ++wrong[t];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST_F(VNLDateUtilityTest, OffsetsDropTheHourAndSecondsOfTheStart) {
  const Date afternoon = wallTime(2024, 3, 10, 14, 35, 20, kEDT);
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, afternoon), wallTime(2024, 3, 11, 0, 35, 0, kEDT));
  EXPECT_EQ(VNLDateUtility::offsetDateDays(-1, afternoon), wallTime(2024, 3, 9, 0, 35, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(30, afternoon), wallTime(2024, 3, 10, 1, 5, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(-40, afternoon), wallTime(2024, 3, 9, 23, 55, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(4, afternoon), wallTime(2024, 7, 10, 0, 35, 0, kEDT));
  EXPECT_EQ(VNLDateUtility::offsetDateYears(-3, afternoon), wallTime(2021, 3, 10, 0, 35, 0, kEST));
  EXPECT_EQ(VNLDateUtility::dateFromOffset(afternoon, Component::hour, 5), wallTime(2024, 3, 10, 0, 35, 0, kEST));
  // 01:30 EST on the autumn change (the repeated hour) still keeps its day.
  EXPECT_EQ(VNLDateUtility::offsetDateDays(0, wallTime(2024, 11, 3, 1, 30, 0, kEST)),
            wallTime(2024, 11, 3, 0, 30, 0, kEDT));
}

TEST_F(VNLDateUtilityTest, OverflowingFieldsRollOverAndUnbuildableOnesAreUnknown) {
  EXPECT_EQ(VNLDateUtility::offsetDateYears(1, wallTime(2024, 2, 29, 9, 15, 0, kEST)),
            wallTime(2025, 3, 1, 0, 15, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(1, wallTime(2024, 1, 31, 9, 15, 0, kEST)),
            wallTime(2024, 3, 2, 0, 15, 0, kEST));

  const Date start = wallTime(2024, 3, 10, 14, 35, 20);
  EXPECT_EQ(VNLDateUtility::offsetDateYears(std::numeric_limits<std::int64_t>::max(), start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(std::numeric_limits<std::int64_t>::min(), start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateYears(2'000'000'000, start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, Date{std::numeric_limits<double>::infinity()}), unknown);
  EXPECT_NE(VNLDateUtility::offsetDateMinutes(2'000'000'000, start), unknown);  // about 3,800 years
}

TEST_F(VNLDateUtilityTest, OffsetsFromNowStartAtMidnightWithTheCurrentMinute) {
  const auto local = [](Date date) {
    const auto seconds = static_cast<std::time_t>(date.timeIntervalSince1970);
    std::tm fields{};
    localtime_r(&seconds, &fields);
    return fields;
  };
  std::tm now{};
  Date nextYear, tomorrow;
  for (int attempt = 0; attempt < 3; ++attempt) {  // in case the minute turns meanwhile
    now = local(Date::now());
    nextYear = VNLDateUtility::yearsFromNow(1);
    tomorrow = VNLDateUtility::daysFromNow(1);
    if (local(Date::now()).tm_min == now.tm_min) break;
  }
  for (const Date result : {nextYear, tomorrow, VNLDateUtility::minutesFromNow(0)}) {
    EXPECT_EQ(local(result).tm_hour, 0);
    EXPECT_EQ(local(result).tm_min, now.tm_min);
    EXPECT_EQ(std::fmod(result.timeIntervalSince1970, 60.0), 0.0);
  }
  EXPECT_EQ(local(nextYear).tm_year, now.tm_year + 1);
  EXPECT_GT(tomorrow, Date::now());
}

TEST_F(VNLDateUtilityTest, DaysBetweenIsTheDayPartOfTheCalendarDifference) {
  const Date lateEvening = wallTime(2024, 5, 1, 23, 30, 0, kEDT);
  EXPECT_EQ(VNLDateUtility::daysBetween(lateEvening, wallTime(2024, 5, 1, 0, 5, 0, kEDT)), 0);
  EXPECT_EQ(VNLDateUtility::daysBetween(lateEvening, wallTime(2024, 5, 2, 0, 5, 0, kEDT)), 1);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 5, 2, 0, 5, 0, kEDT), lateEvening), -1);
  // 47 hours across the spring change are two calendar days.
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 3, 9, 0, 0, 0, kEST), wallTime(2024, 3, 11, 0, 0, 0, kEDT)), 2);
  // Whole months and years are not counted.
  const Date mid = wallTime(2024, 1, 15, 12, 0, 0, kEST);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, wallTime(2024, 3, 20, 12, 0, 0, kEDT)), 5);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, wallTime(2025, 1, 15, 12, 0, 0, kEST)), 0);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 1, 31, 12, 0, 0, kEST), wallTime(2024, 3, 1, 12, 0, 0, kEST)), 1);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, Date{std::nan("")}), 0);
}

}  // namespace
}  // namespace varnel
