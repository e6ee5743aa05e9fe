// The payment-accounts answer: a complete card, partly filled and mistyped
// entries, and answers that are not that answer at all.

#include <gmock/gmock.h>

#include <fstream>

#include "support/Fakes.h"
#include "varnel/services/VNLParsePaymentAccounts.h"

namespace varnel {
namespace {

Json corpus(const std::string& name) {
  return Json::parse(std::ifstream(std::string(VARNEL_FUZZ_CORPUS_DIR) + "/payment_accounts/" + name), nullptr,
                     false);
}

using PaymentAccountsParserTest = testing::HostFixture;

TEST_F(PaymentAccountsParserTest, CompleteAccountFillsHolderCardAndAddress) {
  const auto accounts = VNLParsePaymentAccounts().parsePaymentAccounts(corpus("sample.json"));
  ASSERT_EQ(accounts.size(), 1u);
  const PaymentAccount& account = accounts[0];
  EXPECT_EQ(account.guestDetails(), CardGuestDetails("Rowan", "Ashby"));
  EXPECT_EQ(account.creditCard(), CreditCard(true, true, "4111111111111111", "08/30", "08", "2030", "VISA",
                                             "CREDIT_CARD", "CARD-REF-0001", "7d1e0c", std::nullopt, false));
  ASSERT_NE(account.cardHolderAddress(), nullptr);
  const KTVRAddress expected{"12 Harbour Lane",
                             std::nullopt,
                             "Wrenfield",
                             KTVRAddress::Region{"Florin", "FN"},
                             KTVRAddress::Region{"United States", "US"},
                             "00501",
                             KTVRAddress::Phone{"HOME", "555-0134"},
                             KTVRAddress::Phone{"MOBILE", "555-0188"}};
  EXPECT_EQ(*account.cardHolderAddress(), expected);
  EXPECT_THAT(log->messages(), ::testing::IsEmpty()) << "card answers are never logged";
}

TEST_F(PaymentAccountsParserTest, MissingOrMistypedMembersBecomeEmptyFalseOrAbsent) {
  const auto partial = VNLParsePaymentAccounts().parsePaymentAccounts(corpus("partial.json"));
  ASSERT_EQ(partial.size(), 1u);
  EXPECT_EQ(partial[0].guestDetails(), CardGuestDetails("Ada", ""));
  EXPECT_EQ(partial[0].creditCard(), CreditCard()) << "a text flag and a numeric card number are not read";
  ASSERT_NE(partial[0].cardHolderAddress(), nullptr);
  const KTVRAddress& address = *partial[0].cardHolderAddress();
  EXPECT_EQ(address.state, std::nullopt);
  EXPECT_EQ(address.country, (KTVRAddress::Region{std::nullopt, std::nullopt}));
  EXPECT_EQ(address.phoneNumber, (KTVRAddress::Phone{std::nullopt, "555"}));
  EXPECT_EQ(address.line1, std::nullopt);

  // Non-object entries are skipped; object entries with nothing usable still count.
  const auto mistyped = VNLParsePaymentAccounts().parsePaymentAccounts(corpus("mistyped.json"));
  ASSERT_EQ(mistyped.size(), 2u);
  for (const PaymentAccount& account : mistyped) {
    EXPECT_EQ(account.guestDetails(), CardGuestDetails("", ""));
    EXPECT_EQ(account.creditCard(), CreditCard());
    EXPECT_EQ(account.cardHolderAddress(), nullptr);
  }
}

TEST_F(PaymentAccountsParserTest, AnswersOfAnotherShapeGiveNoAccounts) {
  const std::vector<Json> answers = {Json(),          Json::object(),          Json::array(),
                                     "text",          42,                      corpus("not-a-list.json"),
                                     corpus("bare-list.json"), corpus("truncated.json")};
  for (const Json& answer : answers) {
    SCOPED_TRACE(answer.dump());
    EXPECT_TRUE(VNLParsePaymentAccounts().parsePaymentAccounts(answer).empty());
  }
}

}  // namespace
}  // namespace varnel
