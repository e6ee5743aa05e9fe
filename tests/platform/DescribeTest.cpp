#include <gtest/gtest.h>

#include "varnel/platform/Describe.h"

namespace varnel {
namespace {

TEST(Describe, FloatsAreShortestWithPointZeroWhenWhole) {
  EXPECT_EQ(describe(0.0f), "0.0");
  EXPECT_EQ(describe(12.5f), "12.5");
  EXPECT_EQ(describe(0.1f), "0.1");
  EXPECT_EQ(describe(199.99f), "199.99");
  EXPECT_EQ(describe(-3.0), "-3.0");
  EXPECT_EQ(describe(16777216.0f), "1.6777216e+07");
  EXPECT_EQ(describe(0.00001), "1e-05");
}

TEST(Describe, DatesInUtcWithOffset) {
  EXPECT_EQ(describe(Date{1710099320.0}), "2024-03-10 19:35:20 +0000");
  EXPECT_EQ(describe(Date::unknownMarker()), "1970-01-01 00:00:01 +0000");
  EXPECT_EQ(describe(Date{-0.5}), "1969-12-31 23:59:59 +0000");
}

TEST(Describe, OptionalsAndListsQuoteStrings) {
  EXPECT_EQ(describe(std::optional<std::string>("a\"b")), "Optional(\"a\\\"b\")");
  EXPECT_EQ(describe(std::optional<std::string>()), "nil");
  EXPECT_EQ(describe(std::vector<std::string>{"a", "b"}), "[\"a\", \"b\"]");
  EXPECT_EQ(describe(std::optional<std::vector<float>>(std::vector<float>{1.0f, 2.5f})), "Optional([1.0, 2.5])");
  EXPECT_EQ(describe(true), "true");
  EXPECT_EQ(describe(std::int64_t{-7}), "-7");
}

struct Described {
  std::string debugDescription() const { return "custom"; }
};

TEST(Describe, NestedValuesUseTheirDebugDescription) {
  EXPECT_EQ(describe(std::vector<Described>(2)), "[custom, custom]");
}

}  // namespace
}  // namespace varnel
