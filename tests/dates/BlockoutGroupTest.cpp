#include <gtest/gtest.h>

#include "DeviceTimeZone.h"
#include "varnel/dates/BlockoutGroup.h"
#include "varnel/dates/StringToMD5.h"

namespace varnel {
namespace {

using testing::wallTime;

TEST(BlockoutGroup, BlocksEveryMomentOfABlockedUtcDayOnly) {
  const BlockoutGroup group("", "", "", {wallTime(2024, 12, 25, 9, 30, 0), wallTime(2001, 1, 1, 12, 0, 0)});
  const std::pair<Date, bool> rows[] = {
      {wallTime(2024, 12, 25, 0, 0, 0), true},          {wallTime(2024, 12, 25, 23, 59, 59.999), true},
      {wallTime(2024, 12, 24, 23, 59, 59.999), false},  {wallTime(2024, 12, 26, 0, 0, 0), false},
      // Evening of the 24th in New York is already the 25th in UTC.
      {wallTime(2024, 12, 24, 20, 0, 0, -5), true},
      // Day numbers count toward 2001-01-01, so both sides of it are day 0.
      {wallTime(2000, 12, 31, 12, 0, 0), true},         {wallTime(2000, 12, 30, 12, 0, 0), false},
  };
  for (const auto& [at, blocked] : rows) EXPECT_EQ(group.blockedOut(at), blocked) << at.timeIntervalSince1970;
  EXPECT_FALSE(BlockoutGroup("", "", "", {}).blockedOut(wallTime(2024, 12, 25, 9, 30, 0)));
}

TEST(StringToMD5, LowercaseHexOfTheUtf8BytesUpToTheFirstZeroByte) {
  EXPECT_EQ(stringToMD5(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(stringToMD5("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(stringToMD5("Caf\xc3\xa9"), "4655bd14eebfaf444e5b33d6851dbbd0");
  EXPECT_EQ(stringToMD5(std::string("ab\0cd", 5)), stringToMD5("ab"));
}

}  // namespace
}  // namespace varnel
