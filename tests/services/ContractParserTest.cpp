#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseContractResponse.h"

namespace varnel {
namespace {

using ::testing::IsEmpty;

class ContractParserTest : public testing::ParserFixture {};

TEST_F(ContractParserTest, SampleAnswerFillsTextsAndSections) {
  const VNLContractDataModel contract = VNLParseContractResponse().parseContract(sample("contract.json"));
  EXPECT_NE(contract.contractForEmail.find("<h1>Monthly Payment Agreement</h1>"), std::string::npos);
  EXPECT_NE(contract.contractForMobile.find("<h2>Monthly Payment Agreement</h2>"), std::string::npos);
  EXPECT_EQ(contract.linksDictionary.size(), 3u);
  EXPECT_EQ(contract.linkDetails("paymentSchedule"), "https://commerce.example.test/contracts/ORD7731A9/schedule");
  EXPECT_EQ(contract.linkDetails("missing"), "");
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ContractParserTest, MissingOrMistypedPartsStayEmptyWithoutLogging) {
  const VNLParseContractResponse parser;
  const VNLContractDataModel mistyped = parser.parseContract(
      {{"contractForEmail", 1}, {"ContractForMobile", "wrong case"}, {"keySections", {{"a", "x"}, {"b", 2}}}});
  EXPECT_EQ(mistyped, VNLContractDataModel{});
  EXPECT_EQ(parser.parseContract(Json::array({"contractForEmail"})), VNLContractDataModel{});
  EXPECT_EQ(parser.parseContract({{"keySections", "a"}}).linksDictionary.size(), 0u);
  EXPECT_EQ(parser.parseContract({{"contractForMobile", "m"}}).contractForMobile, "m");
  EXPECT_THAT(logged(), IsEmpty());
}

TEST(VNLContractDataModel, LinkDetailsGivesEmptyTextForUnknownKeys) {
  VNLContractDataModel contract;
  EXPECT_EQ(contract.linkDetails("terms"), "");
  contract.linksDictionary = {{"terms", "https://x.test/t"}, {"empty", ""}};
  EXPECT_EQ(contract.linkDetails("terms"), "https://x.test/t");
  EXPECT_EQ(contract.linkDetails("Terms"), "");
  EXPECT_EQ(contract.linkDetails(""), "");
}

TEST(VNLContractDataModel, DescriptionShowsTheLinksInDictionaryForm) {
  VNLContractDataModel contract{"E", "M", {}};
  EXPECT_EQ(contract.debugDescription(), "contractForEmail: E \n  contractForMobile: M \n linksDictionary: [:]");
  contract.linksDictionary = {{"b", "y"}, {"a", "say \"hi\""}};
  EXPECT_EQ(contract.debugDescription(),
            "contractForEmail: E \n  contractForMobile: M \n linksDictionary: [\"a\": \"say \\\"hi\\\"\", \"b\": \"y\"]");
}

}  // namespace
}  // namespace varnel
