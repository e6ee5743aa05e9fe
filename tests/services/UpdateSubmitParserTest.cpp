#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kEntries = "Entries is not valid [[String:AnyObject]] or confirmation number is not valid String";
constexpr auto kGuests = "Guests is not valid [[String:AnyObject]] or products is nil";
constexpr auto kPayments =
    "Payments is not valid [[String:AnyObject]] or first payment index is not valid [String:AnyObject]";
constexpr auto kStatus = "Status is not valid String or status is nil";
constexpr auto kCard = "Payment card is not valid [String:AnyObject]";
constexpr auto kCardType = "Payment card type is not valid String";
constexpr auto kCardSubType = "Payment card sub type is not valid String";
constexpr auto kMasked = "Payment card maskedCardNumber is not valid String";
constexpr auto kAmount = "Payment amount is not valid String";

class UpdateSubmitParserTest : public testing::ParserFixture {
 protected:
  RenewalConfirmation parse(const Json& answer) const { return VNLParseUpdateSubmitResponse().parse(answer); }
  RenewalPayment payment(const Json& payment) const { return VNLParseUpdateSubmitResponse().payment(payment); }
};

TEST_F(UpdateSubmitParserTest, SampleAnswerBecomesTheConfirmation) {
  signIn("{A1B2C3D4-0001}");
  const RenewalConfirmation confirmation = parse(sample("express-checkout.json"));
  EXPECT_EQ(confirmation.confirmationNumber(), "KX4419027") << "the first entry's number";
  EXPECT_EQ(confirmation.status(), "BOOKED");
  EXPECT_TRUE(confirmation.paymentPlan());
  EXPECT_EQ(confirmation.payment(), RenewalPayment({.cardType = "VISA",
                                                    .cardSubType = "CREDIT",
                                                    .amount = "149.03",
                                                    .maskedCardNumber = "XXXXXXXXXXXX4242"}));
  EXPECT_EQ(confirmation.pricing().total, "1490.27");
  EXPECT_EQ(confirmation.pricing().monthlyPaymentAmount, "111.77");
  EXPECT_EQ(confirmation.products().size(), 2u);
  ASSERT_EQ(confirmation.guests().size(), 2u);
  EXPECT_TRUE(confirmation.guests()[0].isMe());
  EXPECT_EQ(confirmation.guests()[1].guestPassName(), "Harbor Select Pass");
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(UpdateSubmitParserTest, EmptyAnswerLogsEveryMissingPartInOrder) {
  const RenewalConfirmation confirmation = parse(Json::object());
  EXPECT_EQ(confirmation.confirmationNumber(), "");
  EXPECT_EQ(confirmation.status(), "");
  EXPECT_THAT(confirmation.products(), IsEmpty());
  EXPECT_THAT(confirmation.guests(), IsEmpty());
  EXPECT_EQ(confirmation.payment(), RenewalPayment());
  EXPECT_EQ(confirmation.pricing(), RenewalPricing{});
  EXPECT_TRUE(confirmation.paymentPlan());
  EXPECT_THAT(logged(), ElementsAre(kEntries, kGuests, kPayments, kStatus));
  for (const auto& line : log->lines()) {
    EXPECT_EQ(line.site.file, "Classes/Parser/VNLParseUpdateSubmitResponse");
    EXPECT_EQ(line.site.function, "parse(result:)");
  }
}

TEST_F(UpdateSubmitParserTest, ConfirmationNumberComesFromTheFirstEntryOnly) {
  const auto numberOf = [this](Json entries) {
    return parse({{"orderItems", {{"entries", std::move(entries)}}}}).confirmationNumber();
  };
  EXPECT_EQ(numberOf({{{"confirmationNumber", "C1"}}, {{"confirmationNumber", "C2"}}}), "C1");
  EXPECT_THAT(logged(), ::testing::Not(::testing::Contains(kEntries)));
  EXPECT_EQ(numberOf({Json::object(), {{"confirmationNumber", "C2"}}}), "");
  EXPECT_EQ(numberOf({{{"confirmationNumber", 12}}}), "");
  EXPECT_EQ(numberOf(Json::array()), "");
  EXPECT_EQ(numberOf({{{"confirmationNumber", "C1"}}, "C2"}), "") << "entries must all be objects";
  EXPECT_EQ(log->count(kEntries), 4u);
}

TEST_F(UpdateSubmitParserTest, GuestsAreReadOnlyAlongsideProducts) {
  const Json guests = {{{"participantId", "g1"}}};
  EXPECT_THAT(parse({{"guests", guests}}).guests(), IsEmpty());
  EXPECT_EQ(log->count(kGuests), 1u);
  log->clear();
  EXPECT_EQ(parse({{"guests", guests}, {"orderItems", Json::object()}}).guests().size(), 1u);
  EXPECT_EQ(log->count(kGuests), 0u);
  EXPECT_THAT(parse({{"guests", {{"participantId", "g1"}}}, {"orderItems", Json::object()}}).guests(), IsEmpty());
  EXPECT_EQ(log->count(kGuests), 1u);
}

TEST_F(UpdateSubmitParserTest, PaymentsMustHoldAFirstObject) {
  for (const Json& payments : {Json::array(), Json("card"), Json::array({"card"}), Json::object()}) {
    log->clear();
    const RenewalConfirmation confirmation = parse({{"payments", payments}});
    EXPECT_EQ(confirmation.payment(), RenewalPayment());
    EXPECT_EQ(log->count(kPayments), 1u) << payments.dump();
    EXPECT_EQ(log->count(kCard), 0u);
  }
  log->clear();
  EXPECT_EQ(parse({{"payments", {{{"amount", "1.00"}}, {{"amount", "2.00"}}}}}).payment().amount(), "1.00");
  EXPECT_EQ(log->count(kPayments), 0u);
}

TEST_F(UpdateSubmitParserTest, PaymentWithoutCardObjectStillReadsTheAmount) {
  for (const Json& card : {Json(nullptr), Json("VISA"), Json::array()}) {
    log->clear();
    Json answer = {{"amount", "149.03"}};
    if (!card.is_null()) answer["paymentCard"] = card;
    EXPECT_EQ(payment(answer), RenewalPayment({"", "", "149.03", ""}));
    EXPECT_THAT(logged(), ElementsAre(kCard));
    EXPECT_EQ(log->lines()[0].site.function, "payment(_:)");
  }
}

TEST_F(UpdateSubmitParserTest, EachMistypedPaymentFieldLogsItsOwnMessage) {
  const RenewalPayment result =
      payment({{"paymentCard", {{"cardType", "AMEX"}, {"cardSubType", 3}, {"maskedCardNumber", nullptr}}},
               {"amount", 149.03}});
  EXPECT_EQ(result, RenewalPayment({"AMEX", "", "", ""}));
  EXPECT_THAT(logged(), ElementsAre(kCardSubType, kMasked, kAmount));
  log->clear();
  EXPECT_EQ(payment({{"paymentCard", Json::object()}}), RenewalPayment());
  EXPECT_THAT(logged(), ElementsAre(kCardType, kCardSubType, kMasked, kAmount));
}

TEST_F(UpdateSubmitParserTest, StatusMustBeText) {
  EXPECT_EQ(parse({{"status", 201}}).status(), "");
  EXPECT_EQ(log->count(kStatus), 1u);
  EXPECT_EQ(parse({{"status", ""}}).status(), "");
  EXPECT_EQ(log->count(kStatus), 1u) << "empty text is still text";
}

}  // namespace
}  // namespace varnel
