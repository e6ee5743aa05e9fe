#include <gtest/gtest.h>

#include "varnel/platform/StringFormat.h"

namespace varnel {
namespace {

TEST(StringFormat, FillsSequentialAndNumberedPlaceholders) {
  EXPECT_EQ(stringWithFormat("Call %@ now", {"(555) 555-0100"}), "Call (555) 555-0100 now");
  EXPECT_EQ(stringWithFormat("%2$@ then %1$@", {"a", "b"}), "b then a");
  EXPECT_EQ(stringWithFormat("100%% sure", {"x"}), "100% sure");
  EXPECT_EQ(stringWithFormat("no placeholder", {"x"}), "no placeholder");
  EXPECT_EQ(stringWithFormat("%@ and %@", {"only"}), "only and ");
  EXPECT_EQ(stringWithFormat("trailing %", {}), "trailing %");
}

TEST(StringFormat, CountsPlaceholders) {
  EXPECT_EQ(placeholderCount("Call %@"), 1);
  EXPECT_EQ(placeholderCount("%1$@ %2$@"), 2);
  EXPECT_EQ(placeholderCount("100%% of %d"), 0);
  EXPECT_EQ(placeholderCount(""), 0);
}

}  // namespace
}  // namespace varnel
