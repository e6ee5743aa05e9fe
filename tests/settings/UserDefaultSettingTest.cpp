#include <gtest/gtest.h>

#include <tuple>

#include "varnel/settings/VNLUserDefaultSetting.h"

namespace varnel {
namespace {

using A = DefaultsArray;
using D = DefaultsDictionary;

TEST(UserDefaultValuesEqual, ComparesByKindBothWays) {
  const DefaultsValue absent;
  const A nested{1, absent, A{true, absent}};
  const std::tuple<DefaultsValue, DefaultsValue, bool> rows[] = {
      // A boolean equals only a boolean; numbers compare by value, without rounding beyond 2^53.
      {true, true, true}, {true, false, false}, {true, 1, false}, {false, 0, false}, {0.0, false, false},
      {1, 1.0, true}, {-0.0, 0, true}, {1, 1.5, false},
      {std::int64_t{9007199254740993}, 9007199254740992.0, false}, {std::int64_t{9223372036854775807}, 9.3e18, false},
      // Texts, dates and data only equal their own kind.
      {"on", std::string("on"), true}, {"true", true, false}, {"1", 1, false}, {Date{100.5}, Date{100.5}, true},
      {Date{100.5}, 100.5, false}, {DefaultsData{1, 2}, DefaultsData{1, 2}, true}, {DefaultsData{'a'}, "a", false},
      // Arrays element by element, absent matching absent; dictionaries key by key.
      {nested, A{1.0, absent, A{true, absent}}, true}, {nested, A{1, absent, A{1, absent}}, false},
      {nested, A{1, false, A{true, absent}}, false}, {A{absent}, A{}, false}, {A{1, 2}, A{2, 1}, false},
      {A{}, D{}, false}, {D{{"a", nested}}, D{{"a", nested}}, true}, {D{{"a", true}}, D{{"a", 1}}, false},
      {D{{"a", true}}, D{{"A", true}}, false}, {D{{"a", true}}, D{{"a", true}, {"b", absent}}, false},
  };
  for (std::size_t row = 0; row < std::size(rows); ++row) {
    const auto& [lhs, rhs, equal] = rows[row];
    EXPECT_EQ(userDefaultValuesEqual(lhs, rhs), equal) << "row " << row;
    EXPECT_EQ(userDefaultValuesEqual(rhs, lhs), equal) << "row " << row;
  }
}

TEST(VNLUserDefaultSetting, SettingsOfOneKeyShareABucketAndStillDiffer) {
  const VNLUserDefaultSetting on{"com.ENTM.useEVASSwitch", true}, off{"com.ENTM.useEVASSwitch", false};
  const VNLUserDefaultSettings settings{on, off, {"com.ENTK.HideBringPassAlert", true}, on};
  EXPECT_EQ(settings.size(), 3u);
  EXPECT_FALSE(settings.contains({"com.ENTM.useEVASSwitch", 1}));
}

}  // namespace
}  // namespace varnel
