#include <gtest/gtest.h>

#include "varnel/platform/DefaultsValue.h"

namespace varnel {
namespace {

// Every kind's round trip through the encoding is proven on a real store
// (SqliteUserDefaultsTest); here, what the decoding refuses.
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
