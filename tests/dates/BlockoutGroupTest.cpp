#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "DeviceTimeZone.h"
#include "varnel/dates/BlockoutGroup.h"

namespace varnel {
namespace {

using testing::wallTime;

TEST(BlockoutGroup, DayNumbersCountUtcDaysFromTheReferenceDateTowardZero) {
  EXPECT_EQ(BlockoutGroup::dateNumericalValue(wallTime(2001, 1, 1, 23, 59, 59.9)), 0.0);
  EXPECT_EQ(BlockoutGroup::dateNumericalValue(wallTime(2001, 1, 2, 0, 0, 0)), 1.0);
  EXPECT_EQ(BlockoutGroup::dateNumericalValue(wallTime(2000, 12, 31, 0, 0, 1)), 0.0);
  EXPECT_EQ(BlockoutGroup::dateNumericalValue(wallTime(2000, 12, 30, 23, 0, 0)), -1.0);
  EXPECT_EQ(BlockoutGroup::dateNumericalValue(wallTime(2024, 3, 10, 14, 35, 20)), 8469.0);
}

TEST(BlockoutGroup, KeepsOneDayNumberPerDateInOrder) {
  const BlockoutGroup group("Holidays", "Holiday blockout", "Blocked on holidays",
                            {wallTime(2024, 12, 25, 1, 0, 0), wallTime(2024, 12, 25, 22, 0, 0),
                             wallTime(2024, 7, 4, 12, 0, 0)});
  EXPECT_EQ(group.fullName, "Holiday blockout");
  const double july4 = BlockoutGroup::dateNumericalValue(wallTime(2024, 7, 4, 0, 0, 0));
  const double christmas = july4 + 174;
  EXPECT_EQ(group.blockoutDateNumericalValues, (std::vector<double>{july4, christmas, christmas}));
}

TEST(BlockoutGroup, BlocksEveryMomentOfABlockedUtcDayOnly) {
  const BlockoutGroup group("", "", "", {wallTime(2024, 12, 25, 9, 30, 0), wallTime(2001, 1, 1, 12, 0, 0)});
  EXPECT_TRUE(group.blockedOut(wallTime(2024, 12, 25, 0, 0, 0)));
  EXPECT_TRUE(group.blockedOut(wallTime(2024, 12, 25, 23, 59, 59.999)));
  EXPECT_FALSE(group.blockedOut(wallTime(2024, 12, 24, 23, 59, 59.999)));
  EXPECT_FALSE(group.blockedOut(wallTime(2024, 12, 26, 0, 0, 0)));
  // Evening of the 24th in New York is already the 25th in UTC.
  EXPECT_TRUE(group.blockedOut(wallTime(2024, 12, 24, 20, 0, 0, -5)));
  // Both sides of 2001-01-01 round to day 0.
  EXPECT_TRUE(group.blockedOut(wallTime(2000, 12, 31, 12, 0, 0)));
  EXPECT_FALSE(group.blockedOut(wallTime(2000, 12, 30, 12, 0, 0)));

  EXPECT_FALSE(BlockoutGroup("", "", "", {}).blockedOut(wallTime(2024, 12, 25, 9, 30, 0)));
}

}  // namespace
}  // namespace varnel
