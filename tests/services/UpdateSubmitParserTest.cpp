#include "ParserTestSupport.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {

using testing::kRemoved;

const std::string kEntries =
    "parse(result:) Entries is not valid [[String:AnyObject]] or confirmation number is not valid String";
const std::string kGuests = "parse(result:) Guests is not valid [[String:AnyObject]] or products is nil";
const std::string kPayments =
    "parse(result:) Payments is not valid [[String:AnyObject]] or first payment index is not valid [String:AnyObject]";
const std::string kStatus = "parse(result:) Status is not valid String or status is nil";
const std::string kCard = "payment(_:) Payment card is not valid [String:AnyObject]";
const std::string kCardType = "payment(_:) Payment card type is not valid String";
const std::string kCardSubType = "payment(_:) Payment card sub type is not valid String";
const std::string kMasked = "payment(_:) Payment card maskedCardNumber is not valid String";
const std::string kAmount = "payment(_:) Payment amount is not valid String";
const std::string kCardPath = "/payments/0/paymentCard";

static RenewalConfirmation parse(const Json& answer) { return VNLParseUpdateSubmitResponse().parse(answer); }

using UpdateSubmitParserTest = testing::ParserFixture;

// The sample answer is whole: each row damages one part of it.
TEST_F(UpdateSubmitParserTest, EachDamagedPartIsLoggedAndLeftEmpty) {
  const Json payment = {{"cardType", "VISA"}, {"cardSubType", ""}, {"amount", "149.03"},
                        {"maskedCardNumber", "XXXXXXXXXXXX4242"}};
  expectDamage("express-checkout.json", "Classes/Parser/VNLParseUpdateSubmitResponse", parse, {
      {"", Json::object(), "/paymentPlan", true, {kEntries, kGuests, kPayments, kStatus}},
      {"/orderItems/entries/1/confirmationNumber", 12, "/confirmationNumber", "KX4419027"},
      {"/orderItems/entries/0/confirmationNumber", 12, "/confirmationNumber", "", {kEntries}},
      {"/orderItems/entries", Json::array(), "/confirmationNumber", "", {kEntries}},
      {"/status", "", "/status", ""},
      {"/status", 201, "/status", "", {kStatus}},
      {"/orderItems/limit", 1, "/guests/1/guestPassName", "Harbor Select Pass"},
      {"/orderItems", kRemoved, "/guests", Json::array(), {kEntries, kGuests}},
      // Guests need the products object, not its entries.
      {"/orderItems", Json::object(), "/guests/1/guestPassName", "", {kEntries}},
      {"/guests/1", "guest-102", "/guests", Json::array(), {kGuests}},
      {"/payments", Json::array(), "/payment/amount", "", {kPayments}},
      {"/payments/-", Json{{"amount", "2.00"}}, "/payment/amount", "149.03"},
      {kCardPath, "VISA", "/payment/amount", "149.03", {kCard}},
      {kCardPath, Json::object(), "/payment/cardType", "", {kCardType, kCardSubType, kMasked}},
      {kCardPath + "/cardSubType", 3, "/payment", payment, {kCardSubType}},
      {kCardPath + "/maskedCardNumber", nullptr, "/payment/maskedCardNumber", "", {kMasked}},
      {"/payments/0/amount", 149.03, "/payment/amount", "", {kAmount}},
  });
}

}  // namespace varnel
