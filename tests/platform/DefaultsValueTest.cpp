#include <gtest/gtest.h>

#include "varnel/platform/DefaultsValue.h"

namespace varnel {
namespace {

TEST(DefaultsValue, EncodingKeepsEveryKind) {
  DefaultsDictionary nested{{"flag", DefaultsValue(true)}, {"count", DefaultsValue(1)}};
  const std::vector<DefaultsValue> values = {
      DefaultsValue(),
      DefaultsValue(false),
      DefaultsValue(std::int64_t{-42}),
      DefaultsValue(2.5),
      DefaultsValue(std::string("text")),
      DefaultsValue(Date{1710099320.25}),
      DefaultsValue(DefaultsData{0x00, 0xff, 0x10}),
      DefaultsValue(DefaultsArray{DefaultsValue(1), DefaultsValue(), DefaultsValue("x")}),
      DefaultsValue(nested),
  };
  for (const auto& value : values) {
    DefaultsValue decoded;
    ASSERT_TRUE(decodeDefaultsValue(Json::parse(encodeDefaultsValue(value).dump()), decoded));
    EXPECT_EQ(decoded, value);
  }
}

TEST(DefaultsValue, BooleansAndNumbersStayDistinct) {
  EXPECT_NE(DefaultsValue(true), DefaultsValue(1));
  DefaultsValue decoded;
  ASSERT_TRUE(decodeDefaultsValue(encodeDefaultsValue(DefaultsValue(1)), decoded));
  EXPECT_TRUE(decoded.is<std::int64_t>());
}

TEST(DefaultsValue, DecodingRejectsForeignShapes) {
  DefaultsValue out;
  for (const char* text : {R"({"int":"1"})", R"({"bool":1})", R"({"data":"zz"})", R"({"a":1,"b":2})", "[1]",
                           R"({"array":[{"int":true}]})", "\"plain\""}) {
    EXPECT_FALSE(decodeDefaultsValue(Json::parse(text), out)) << text;
  }
}

TEST(DefaultsValue, DisplayFormUsesRfc3339AndBase64) {
  EXPECT_EQ(toDisplayJson(DefaultsValue(Date{1826861700.0})), "2027-11-22T05:35:00Z");
  EXPECT_EQ(toDisplayJson(DefaultsValue(DefaultsData{'a', 'b', 'c'})), "YWJj");
}

}  // namespace
}  // namespace varnel
