#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kNoPolicies = "No terms & conditions policies found in renewal order";
constexpr auto kBadPolicy = "Unable to parse renewal order terms and conditions";
constexpr auto kNoTexts = "No htmltex found in terms & conditions policies for a renewal order";
constexpr auto kBadText = "Unable to parse terms & condition text";

Json text(std::string id) { return {{"id", id}, {"key", "key-" + id}, {"text", "<p>" + id + "</p>"}}; }

class TermsAndConditionsParserTest : public testing::ParserFixture {
 protected:
  std::vector<VNLRenewalTermsAndConditionsPolicy> policies(Json policyList) const {
    return VNLParseCreateOrderResponse().termsAndConditionsPolicies({{"policies", std::move(policyList)}});
  }
};

TEST_F(TermsAndConditionsParserTest, ReadablePoliciesKeepTheirTextsInOrder) {
  const auto result = policies({{{"id", "p1"}, {"name", "Renewal"}, {"descriptions", {text("a"), text("b")}}},
                                {{"id", "p2"}, {"name", "Privacy"}, {"descriptions", {text("c")}}}});
  ASSERT_EQ(result.size(), 2u);
  EXPECT_EQ(result[0].id, "p1");
  EXPECT_EQ(result[0].name, "Renewal");
  EXPECT_THAT(result[0].descriptions, ElementsAre(VNLRenewalPolicyDescription{"a", "key-a", "<p>a</p>"},
                                                  VNLRenewalPolicyDescription{"b", "key-b", "<p>b</p>"}));
  EXPECT_EQ(result[1].descriptions.size(), 1u);
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(TermsAndConditionsParserTest, PoliciesMustBeAnArrayOfObjects) {
  const VNLParseCreateOrderResponse parser;
  EXPECT_THAT(parser.termsAndConditionsPolicies(Json::object()), IsEmpty());
  EXPECT_THAT(policies({{{"id", "p1"}, {"name", "n"}, {"descriptions", Json::array()}}, "p2"}), IsEmpty());
  EXPECT_THAT(policies("none"), IsEmpty());
  EXPECT_THAT(logged(), ElementsAre(kNoPolicies, kNoPolicies, kNoPolicies));
  EXPECT_EQ(log->lines()[0].site.function, "termsAndConditionsPolicies(_:)");
  EXPECT_EQ(log->lines()[0].site.file, "Classes/Parser/VNLParseCreateOrderResponse");
}

TEST_F(TermsAndConditionsParserTest, PolicyWithoutIdOrNameIsLeftOutBeforeItsTextsAreRead) {
  const auto result = policies({{{"name", "No id"}},
                                {{"id", 7}, {"name", "Numeric id"}, {"descriptions", {text("a")}}},
                                {{"id", "p3"}, {"descriptions", {text("b")}}},
                                {{"id", "p4"}, {"name", "Kept"}, {"descriptions", {text("c")}}}});
  ASSERT_EQ(result.size(), 1u);
  EXPECT_EQ(result[0].id, "p4");
  EXPECT_THAT(logged(), ElementsAre(kBadPolicy, kBadPolicy, kBadPolicy));
}

TEST_F(TermsAndConditionsParserTest, PolicyWithoutTextsIsLeftOutAfterBothMessages) {
  const auto result = policies({{{"id", "p1"}, {"name", "No texts"}},
                                {{"id", "p2"}, {"name", "Mixed texts"}, {"descriptions", {text("a"), 3}}}});
  EXPECT_THAT(result, IsEmpty());
  EXPECT_THAT(logged(), ElementsAre(kNoTexts, kBadPolicy, kNoTexts, kBadPolicy));
  EXPECT_EQ(log->lines()[0].site.function, "descriptionsFromPolicy(_:)");
  EXPECT_EQ(log->lines()[1].site.function, "termsAndConditionsPolicies(_:)");
}

TEST_F(TermsAndConditionsParserTest, UnreadableTextsAreSkippedAndAnEmptyListStillCounts) {
  Json noKey = text("b");
  noKey.erase("key");
  Json numericText = text("c");
  numericText["text"] = 3;
  const auto result = policies({{{"id", "p1"}, {"name", "Some"}, {"descriptions", {text("a"), noKey, numericText}}},
                                {{"id", "p2"}, {"name", "None"}, {"descriptions", {noKey}}},
                                {{"id", "p3"}, {"name", "Empty"}, {"descriptions", Json::array()}}});
  ASSERT_EQ(result.size(), 3u);
  EXPECT_THAT(result[0].descriptions, ElementsAre(VNLRenewalPolicyDescription{"a", "key-a", "<p>a</p>"}));
  EXPECT_THAT(result[1].descriptions, IsEmpty());
  EXPECT_THAT(result[2].descriptions, IsEmpty());
  EXPECT_THAT(logged(), ElementsAre(kBadText, kBadText, kBadText));
}

TEST_F(TermsAndConditionsParserTest, DescriptionsAreAbsentRatherThanEmptyWhenNotAnArray) {
  const VNLParseCreateOrderResponse parser;
  EXPECT_EQ(parser.descriptionsFromPolicy({{"descriptions", {{"id", "a"}}}}), std::nullopt);
  EXPECT_EQ(parser.descriptionsFromPolicy(Json::array()), std::nullopt);
  const auto empty = parser.descriptionsFromPolicy({{"descriptions", Json::array()}});
  ASSERT_TRUE(empty.has_value());
  EXPECT_THAT(*empty, IsEmpty());
  EXPECT_THAT(logged(), ElementsAre(kNoTexts, kNoTexts));
}

}  // namespace
}  // namespace varnel
