#include <gtest/gtest.h>

#include "varnel/platform/Json.h"

namespace varnel {
namespace {

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST(ParseJson, RefusesWhatIsBeyondItsLimitsWithTheReasonAndKeepsTheRest) {
  struct Row {
    std::string text;
    JsonLimits limits;
    std::string refusal;  // empty: parsed
  };
  const JsonLimits unique = kJsonLimitsUniqueKeys;
  JsonLimits shallow, small;
  shallow.maxDepth = 2;
  small.maxBytes = 2;
  const Row rows[] = {
      {R"({"a":[1,{"b":null}],"c":"\u00e9"})", {}, ""},
      {nested(kJsonMaxDepth), {}, ""},
      {nested(kJsonMaxDepth + 1), {}, "nested deeper than 128 levels"},
      {R"({"a":)" + std::string(10'000'000, '['), {}, "nested deeper than 128 levels"},
      {nested(3), shallow, "nested deeper than 2 levels"},
      {R"({"a":1,"a":2})", {}, ""},
      {R"({"a":1,"a":2})", unique, R"(the key "a" appears twice in one object)"},
      {R"({"a":{"a":1},"b":[{"a":2},{"a":3}]})", unique, ""},
      {"[1, 2", {}, "not valid JSON (at byte "},
      {"\"\xff\"", {}, "not valid JSON"},
      {"", {}, "not valid JSON"},
      {"[1]", small, "larger than 2 bytes"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text.substr(0, 40));
    const JsonParse parsed = parseJson(row.text, row.limits);
    if (!row.refusal.empty()) {
      EXPECT_FALSE(parsed);
      EXPECT_EQ(parsed.refusal.find(row.refusal), 0u) << parsed.refusal;
      continue;
    }
    ASSERT_TRUE(parsed) << parsed.refusal;
    // What is parsed is within the limits that the library's recursive copies,
    // comparisons and printing need.
    const Json copy = *parsed.value;
    EXPECT_EQ(copy, *parsed.value);
    EXPECT_EQ(parseJson(copy.dump()).value, copy);
  }
}

}  // namespace
}  // namespace varnel
