#include "ParserTestSupport.h"
#include "varnel/services/VNLParseContractResponse.h"

namespace varnel {

static VNLContractDataModel parse(const Json& answer) { return VNLParseContractResponse().parseContract(answer); }

using ContractParserTest = testing::ParserFixture;

TEST_F(ContractParserTest, SampleAnswerGivesTextsAndLinksByKey) {
  const VNLContractDataModel contract = parse(sample("contract.json"));
  EXPECT_EQ(contract.contractForMobile.rfind("<h2>Monthly Payment Agreement</h2>", 0), 0u);
  EXPECT_EQ(contract.linkDetails("paymentSchedule"), "https://commerce.example.test/contracts/ORD7731A9/schedule");
  EXPECT_EQ(contract.linkDetails("PaymentSchedule"), "");
}

TEST(ContractDataModelTest, DescribesItselfAndAnswersEmptyForMissingLinks) {
  VNLContractDataModel contract;
  EXPECT_EQ(contract.linkDetails(""), "");
  EXPECT_EQ(contract.linkDetails("paymentSchedule"), "");
  EXPECT_EQ(contract.debugDescription(), "contractForEmail:  \n  contractForMobile:  \n linksDictionary: [:]");
  contract = {"mail", "mobile", {{"a", "https://x.test/a"}, {"b", "2"}}};
  EXPECT_EQ(contract.debugDescription(),
            "contractForEmail: mail \n  contractForMobile: mobile \n linksDictionary: "
            "[\"a\": \"https://x.test/a\", \"b\": \"2\"]");
}

TEST_F(ContractParserTest, DamagedPartsStayEmptyWithoutLogging) {
  expectDamage("contract.json", "", parse, {
      {"/contractForEmail", 1, "/contractForEmail", ""},
      {"/keySections/summary", 2, "/linksDictionary", Json::object()},  // sections are all text
      {"/keySections", "a", "/linksDictionary", Json::object()},
  });
}

}  // namespace varnel
