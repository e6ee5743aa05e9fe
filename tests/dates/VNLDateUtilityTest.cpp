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

class VNLDateUtilityTest : public testing::HostFixture {
 protected:
  DeviceTimeZone newYork{"America/New_York"};
};

TEST_F(VNLDateUtilityTest, ParsesTheServiceFormatWithAnyZoneForm) {
  const Date instant = wallTime(2024, 3, 10, 14, 35, 20.25);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T14:35:20.250+0000"), instant);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T14:35:20.250Z"), instant);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T10:35:20.250-0400"), instant);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10T20:05:20.250+0530"), instant);
}

TEST_F(VNLDateUtilityTest, ShortFormatReadsItsLiteralZAsDeviceTime) {
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T14:35:20Z"), wallTime(2024, 3, 10, 14, 35, 20, kEDT));
  EXPECT_EQ(VNLDateUtility::shortDate("2024-01-10T14:35:20Z"), wallTime(2024, 1, 10, 14, 35, 20, kEST));
  // Either entry point takes either format when it is given.
  EXPECT_EQ(VNLDateUtility::date("2024-01-10T14:35:20Z", VNLEntitlementDateFormatterFormatStringShort),
            VNLDateUtility::shortDate("2024-01-10T14:35:20Z"));
  EXPECT_EQ(VNLDateUtility::shortDate("2024-01-10T14:35:20.000+0000", VNLEntitlementDateFormatterFormatString),
            wallTime(2024, 1, 10, 14, 35, 20));
}

TEST_F(VNLDateUtilityTest, AnythingThatDoesNotParseWholeIsTheUnknownDate) {
  const Date unknown = VNLDateUtility::defaultDate();
  EXPECT_EQ(unknown, Date::fromTimeIntervalSince1970(1.0));
  for (const std::string text : {"garbage", "", "2024-03-10T14:35:20.000+0000 trailing",
                                 "2024-03-10T14:35:20.000", "2024-03-10", "2024-02-30T14:35:20.000+0000",
                                 "2024-03-10T25:35:20.000+0000", "2024-03-10T14:35:20.000+0000\xff"}) {
    EXPECT_EQ(VNLDateUtility::date(text), unknown) << text;
  }
  EXPECT_EQ(VNLDateUtility::date(std::string("2024-03-10T14:35:20.000+0000\0tail", 33)), unknown);
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T14:35:20+0000"), unknown);
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T14:35:20.000Z"), unknown);
  // 02:30 does not exist in New York on the morning the clocks go forward.
  EXPECT_EQ(VNLDateUtility::shortDate("2024-03-10T02:30:00Z"), unknown);
  EXPECT_NE(VNLDateUtility::shortDate("2024-03-10T03:30:00Z"), unknown);
  EXPECT_EQ(VNLDateUtility::date("2024-03-10 x", "yyyy-MM-dd x"), unknown) << "undefined pattern letter";
}

TEST_F(VNLDateUtilityTest, FormatsInTheDeviceZoneAndReadsBackTheSameInstant) {
  const Date instant = wallTime(2024, 7, 4, 16, 5, 9.5);
  const std::string text = VNLDateUtility::dateString(instant, VNLEntitlementDateFormatterFormatString);
  EXPECT_EQ(text, "2024-07-04T12:05:09.500-0400");
  EXPECT_EQ(VNLDateUtility::date(text), instant);
  EXPECT_EQ(VNLDateUtility::dateString(instant, "EEEE d MMMM yyyy"), "Thursday 4 July 2024");
  EXPECT_EQ(VNLDateUtility::dateString(Date{std::nan("")}, VNLEntitlementDateFormatterFormatString), "");
}

TEST_F(VNLDateUtilityTest, FormattingKeepsTheZoneOfTheLastParse) {
  const auto format = VNLEntitlementDateFormatterFormatString;
  const Date instant = wallTime(2024, 7, 4, 16, 5, 9);
  VNLDateUtility::date("2024-07-04T16:05:09.000+0000");

  DeviceTimeZone tokyo{"Asia/Tokyo"};
  EXPECT_EQ(VNLDateUtility::dateString(instant, format), "2024-07-04T12:05:09.000-0400");
  VNLDateUtility::date("2024-07-04T16:05:09.000+0000");
  EXPECT_EQ(VNLDateUtility::dateString(instant, format), "2024-07-05T01:05:09.000+0900");
}

TEST_F(VNLDateUtilityTest, SharedFormattersGiveEachThreadCorrectAnswers) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 300;
  std::vector<int> wrong(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &wrong] {
      for (int round = 0; round < kRounds; ++round) {
        const Date instant = wallTime(2020 + t, 1 + round % 12, 1 + round % 28, t, round % 60, t);
        const auto text = VNLDateUtility::dateString(instant, VNLEntitlementDateFormatterFormatString);
        if (VNLDateUtility::date(text) != instant) ++wrong[t];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}

TEST_F(VNLDateUtilityTest, OffsetsDropTheHourAndSecondsOfTheStart) {
  const Date afternoon = wallTime(2024, 3, 10, 14, 35, 20, kEDT);
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, afternoon), wallTime(2024, 3, 11, 0, 35, 0, kEDT));
  EXPECT_EQ(VNLDateUtility::offsetDateDays(-1, afternoon), wallTime(2024, 3, 9, 0, 35, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateDays(0, afternoon), wallTime(2024, 3, 10, 0, 35, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(30, afternoon), wallTime(2024, 3, 10, 1, 5, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(-40, afternoon), wallTime(2024, 3, 9, 23, 55, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(4, afternoon), wallTime(2024, 7, 10, 0, 35, 0, kEDT));
  EXPECT_EQ(VNLDateUtility::offsetDateYears(-3, afternoon), wallTime(2021, 3, 10, 0, 35, 0, kEST));
  // Components the arithmetic does not move only lose the hour.
  for (auto other : {Component::hour, Component::second, Component::era, Component::weekday}) {
    EXPECT_EQ(VNLDateUtility::dateFromOffset(afternoon, other, 5), wallTime(2024, 3, 10, 0, 35, 0, kEST));
  }
}

TEST_F(VNLDateUtilityTest, OffsetsAroundClockChangesUseTheZoneOfTheResult) {
  // The day before and after the autumn change: midnight is before 02:00.
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, wallTime(2024, 11, 2, 23, 10, 0, kEDT)),
            wallTime(2024, 11, 3, 0, 10, 0, kEDT));
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, wallTime(2024, 11, 3, 1, 10, 0, kEST)),
            wallTime(2024, 11, 4, 0, 10, 0, kEST));
  // 01:30 EST (the repeated hour) is still taken as the day 2024-11-03.
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(0, wallTime(2024, 11, 3, 1, 30, 0, kEST)),
            wallTime(2024, 11, 3, 0, 30, 0, kEDT));
}

TEST_F(VNLDateUtilityTest, OverflowingFieldsRollOverLikeTheCalendarDoes) {
  EXPECT_EQ(VNLDateUtility::offsetDateYears(1, wallTime(2024, 2, 29, 9, 15, 0, kEST)),
            wallTime(2025, 3, 1, 0, 15, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(1, wallTime(2024, 1, 31, 9, 15, 0, kEST)),
            wallTime(2024, 3, 2, 0, 15, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(-13, wallTime(2024, 1, 15, 9, 15, 0, kEST)),
            wallTime(2022, 12, 15, 0, 15, 0, kEST));
  EXPECT_EQ(VNLDateUtility::offsetDateDays(366, wallTime(2024, 1, 1, 9, 15, 0, kEST)),
            wallTime(2025, 1, 1, 0, 15, 0, kEST));
}

TEST_F(VNLDateUtilityTest, UnbuildableOffsetsGiveTheUnknownDate) {
  const Date start = wallTime(2024, 3, 10, 14, 35, 20);
  const Date unknown = VNLDateUtility::defaultDate();
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(VNLDateUtility::offsetDateYears(most, start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateMonths(least, start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateDays(std::int64_t{1} << 40, start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateYears(2'000'000'000, start), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateMinutes(0, Date{std::numeric_limits<double>::infinity()}), unknown);
  EXPECT_EQ(VNLDateUtility::offsetDateDays(1, Date{1e300}), unknown);
  // Far but buildable: two billion minutes is about 3,800 years.
  EXPECT_NE(VNLDateUtility::offsetDateMinutes(2'000'000'000, start), unknown);
}

std::tm localFields(Date date) {
  const auto seconds = static_cast<std::time_t>(std::floor(date.timeIntervalSince1970));
  std::tm fields{};
  localtime_r(&seconds, &fields);
  return fields;
}

TEST_F(VNLDateUtilityTest, OffsetsFromNowStartAtMidnightWithTheCurrentMinute) {
  std::tm now{};
  Date nextYear, tomorrow, soon;
  // Retry in the rare case that the minute turns while the offsets are taken.
  for (int attempt = 0; attempt < 3; ++attempt) {
    now = localFields(Date::now());
    nextYear = VNLDateUtility::yearsFromNow(1);
    tomorrow = VNLDateUtility::daysFromNow(1);
    soon = VNLDateUtility::minutesFromNow(0);
    if (localFields(Date::now()).tm_min == now.tm_min) break;
  }
  for (const Date result : {nextYear, tomorrow, soon}) {
    const std::tm fields = localFields(result);
    EXPECT_EQ(fields.tm_hour, 0);
    EXPECT_EQ(fields.tm_min, now.tm_min);
    EXPECT_EQ(fields.tm_sec, 0);
    EXPECT_EQ(std::fmod(result.timeIntervalSince1970, 1.0), 0.0);
  }
  EXPECT_EQ(localFields(soon).tm_yday, now.tm_yday);
  EXPECT_EQ(localFields(tomorrow).tm_yday, localFields(soon.addingTimeInterval(86400 + 7200)).tm_yday);
  EXPECT_EQ(localFields(nextYear).tm_year, now.tm_year + 1);
}

TEST_F(VNLDateUtilityTest, DaysBetweenCountsCalendarDaysInTheDeviceZone) {
  const Date lateEvening = wallTime(2024, 5, 1, 23, 30, 0, kEDT);
  EXPECT_EQ(VNLDateUtility::daysBetween(lateEvening, wallTime(2024, 5, 1, 0, 5, 0, kEDT)), 0);
  EXPECT_EQ(VNLDateUtility::daysBetween(lateEvening, wallTime(2024, 5, 2, 0, 5, 0, kEDT)), 1);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 5, 2, 0, 5, 0, kEDT), lateEvening), -1);
  // 47 hours across the spring change are still two calendar days.
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 3, 9, 0, 0, 0, kEST), wallTime(2024, 3, 11, 0, 0, 0, kEDT)), 2);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 11, 2, 12, 0, 0, kEDT), wallTime(2024, 11, 3, 23, 0, 0, kEST)), 1);
}

TEST_F(VNLDateUtilityTest, DaysBetweenIsOnlyTheDayPartOfALongerDifference) {
  const Date mid = wallTime(2024, 1, 15, 12, 0, 0, kEST);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, wallTime(2024, 3, 20, 12, 0, 0, kEDT)), 5);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, wallTime(2025, 1, 15, 12, 0, 0, kEST)), 0);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 1, 31, 12, 0, 0, kEST), wallTime(2024, 3, 1, 12, 0, 0, kEST)), 1);
  EXPECT_EQ(VNLDateUtility::daysBetween(wallTime(2024, 3, 20, 12, 0, 0, kEDT), mid), -5);
  EXPECT_EQ(VNLDateUtility::daysBetween(mid, Date{std::nan("")}), 0);
}

}  // namespace
}  // namespace varnel
