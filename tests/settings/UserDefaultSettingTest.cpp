#include <gtest/gtest.h>

#include "varnel/settings/VNLUserDefaultSetting.h"

namespace varnel {
namespace {

DefaultsValue array(std::initializer_list<DefaultsValue> elements) { return DefaultsValue(DefaultsArray(elements)); }

TEST(UserDefaultValuesEqual, BooleansNeverEqualNumbersWhileNumbersCompareByValue) {
  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(true), DefaultsValue(true)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(true), DefaultsValue(false)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(true), DefaultsValue(1)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(false), DefaultsValue(0)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(0.0), DefaultsValue(false)));

  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(1), DefaultsValue(1.0)));
  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(-0.0), DefaultsValue(0)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(1), DefaultsValue(1.5)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(2.5), DefaultsValue(2)));
  // Beyond 2^53 a double cannot hold every integer: no rounding into equality.
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(std::int64_t{9007199254740993}), DefaultsValue(9007199254740992.0)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(std::int64_t{9223372036854775807}), DefaultsValue(9.3e18)));
}

TEST(UserDefaultValuesEqual, TextDatesAndDataCompareOnlyWithTheirOwnKind) {
  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue("on"), DefaultsValue(std::string("on"))));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue("true"), DefaultsValue(true)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue("1"), DefaultsValue(1)));
  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(Date{100.5}), DefaultsValue(Date{100.5})));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(Date{100.5}), DefaultsValue(100.5)));
  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(DefaultsData{1, 2}), DefaultsValue(DefaultsData{1, 2})));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(DefaultsData{'a'}), DefaultsValue("a")));
}

TEST(UserDefaultValuesEqual, ArraysCompareElementByElementWithAbsentMatchingAbsent) {
  const auto nested = array({DefaultsValue(1), DefaultsValue(), array({DefaultsValue(true), DefaultsValue()})});
  EXPECT_TRUE(userDefaultValuesEqual(nested, nested));
  EXPECT_TRUE(userDefaultValuesEqual(
      nested, array({DefaultsValue(1.0), DefaultsValue(), array({DefaultsValue(true), DefaultsValue()})})));
  EXPECT_FALSE(userDefaultValuesEqual(
      nested, array({DefaultsValue(1), DefaultsValue(), array({DefaultsValue(1), DefaultsValue()})})));
  EXPECT_FALSE(userDefaultValuesEqual(
      nested, array({DefaultsValue(1), DefaultsValue(false), array({DefaultsValue(true), DefaultsValue()})})));
  EXPECT_FALSE(userDefaultValuesEqual(array({DefaultsValue()}), array({})));
  EXPECT_FALSE(userDefaultValuesEqual(array({DefaultsValue(1), DefaultsValue(2)}), array({DefaultsValue(2), DefaultsValue(1)})));
  EXPECT_FALSE(userDefaultValuesEqual(array({}), DefaultsValue(DefaultsDictionary{})));
}

TEST(UserDefaultValuesEqual, DictionariesCompareKeyByKeyWithTheSameRule) {
  const DefaultsDictionary base{{"enabled", DefaultsValue(true)}, {"list", array({DefaultsValue(), DefaultsValue("x")})}};
  auto numeric = base;
  numeric["enabled"] = DefaultsValue(1);
  auto extra = base;
  extra["more"] = DefaultsValue(false);
  auto renamed = base;
  renamed.erase("enabled");
  renamed["Enabled"] = DefaultsValue(true);

  EXPECT_TRUE(userDefaultValuesEqual(DefaultsValue(base), DefaultsValue(DefaultsDictionary(base))));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(base), DefaultsValue(numeric)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(base), DefaultsValue(extra)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(extra), DefaultsValue(base)));
  EXPECT_FALSE(userDefaultValuesEqual(DefaultsValue(base), DefaultsValue(renamed)));
}

TEST(VNLUserDefaultSetting, SettingsOfOneKeyHashAlikeAndStillDiffer) {
  const VNLUserDefaultSetting on{"com.ENTM.useEVASSwitch", DefaultsValue(true)};
  const VNLUserDefaultSetting off{"com.ENTM.useEVASSwitch", DefaultsValue(false)};
  const VNLUserDefaultSetting other{"com.ENTK.HideBringPassAlert", DefaultsValue(true)};
  EXPECT_EQ(std::hash<VNLUserDefaultSetting>{}(on), std::hash<VNLUserDefaultSetting>{}(off));
  EXPECT_NE(on, off);
  EXPECT_NE(on, other);
  EXPECT_EQ(on, (VNLUserDefaultSetting{"com.ENTM.useEVASSwitch", DefaultsValue(true)}));

  VNLUserDefaultSettings settings{on, off, other, on};
  EXPECT_EQ(settings.size(), 3u);
  EXPECT_FALSE(settings.contains({"com.ENTM.useEVASSwitch", DefaultsValue(1)}));
}

}  // namespace
}  // namespace varnel
