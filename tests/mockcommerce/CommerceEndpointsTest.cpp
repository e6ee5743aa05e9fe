// The mock's commerce answers over loopback HTTP: parsed by the module's own
// parsers into complete records, and refused as the service refuses.

#include "MockCommerceTestSupport.h"
#include "varnel/services/VNLParseContractResponse.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel::mock::testing {
namespace {

void expectCompleteGuest(const RenewableGuest& guest) {
  for (const std::string* field : {&guest.participantId(), &guest.guestKuid(), &guest.guestFirstName(),
                                   &guest.guestLastName(), &guest.emailId(), &guest.dob(), &guest.streetAddress(),
                                   &guest.city(), &guest.state(), &guest.zipCode(), &guest.country(),
                                   &guest.phoneNumber(), &guest.phoneNumberType()}) {
    EXPECT_FALSE(field->empty()) << guest.debugDescription();
  }
}

TEST_F(MockCommerceTest, MonthlyOrderContractAndCheckoutParseIntoCompleteRecords) {
  auto created = post(std::string("/commerce/guests/") + kGuestKuid + "/orders", orderBody("AP-100201", true));
  ASSERT_TRUE(created);
  ASSERT_EQ(created->status, 200) << created->body;
  RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(bodyOf(created));
  EXPECT_FALSE(order.orderId.empty());
  EXPECT_FALSE(order.bookingTermsAndConditions.empty());
  ASSERT_EQ(order.products.size(), 1u);
  EXPECT_EQ(order.products[0].passName, "Crestline Select Pass");
  EXPECT_EQ(order.pricing.total, "709.00");
  EXPECT_EQ(order.pricing.subtotal, "665.00");
  EXPECT_EQ(order.pricing.taxAmount, "44.00");
  EXPECT_EQ(order.pricing.currency, "USD");
  EXPECT_EQ(order.pricing.downPaymentAmount, "79.00");
  EXPECT_EQ(order.pricing.monthlyPaymentAmount, "49.75");
  EXPECT_EQ(order.pricing.depositDue, "79.00");
  ASSERT_EQ(order.guests.size(), 3u);  // the household
  for (const auto& guest : order.guests) expectCompleteGuest(guest);
  EXPECT_EQ(order.guests[0].guestPassName(), "Crestline Select Pass");
  ASSERT_GE(order.termsAndConditionsPolicies.size(), 2u);  // renewal and monthly terms
  for (const auto& policy : order.termsAndConditionsPolicies) EXPECT_FALSE(policy.descriptions.empty());

  auto contract = post("/commerce/orders/" + order.orderId + "/contract", checkoutBody("0"));
  ASSERT_TRUE(contract);
  ASSERT_EQ(contract->status, 200) << contract->body;
  VNLContractDataModel model = VNLParseContractResponse().parseContract(bodyOf(contract));
  EXPECT_NE(model.contractForEmail.find("49.75"), std::string::npos);
  EXPECT_FALSE(model.contractForMobile.empty());
  EXPECT_EQ(model.linksDictionary.size(), 3u);

  auto paid = post(checkoutPath(order.orderId), checkoutBody("0"));
  ASSERT_TRUE(paid);
  ASSERT_EQ(paid->status, 200) << paid->body;
  RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(bodyOf(paid));
  EXPECT_EQ(confirmation.status(), "BOOKED");
  EXPECT_FALSE(confirmation.confirmationNumber().empty());
  EXPECT_EQ(confirmation.payment().amount(), "79.00");
  EXPECT_EQ(confirmation.payment().cardType(), "VISA");
  EXPECT_EQ(confirmation.payment().cardSubType(), "CREDIT");
  EXPECT_EQ(confirmation.payment().maskedCardNumber(), "XXXXXXXXXXXX1111");
  EXPECT_EQ(confirmation.products().size(), 1u);
  EXPECT_EQ(confirmation.guests().size(), 3u);
  EXPECT_EQ(server().charges(), (std::map<std::string, int>{{order.orderId, 1}}));
}

TEST_F(MockCommerceTest, PaidInFullOrderIsFoundByBarcodeAndChargesItsTotal) {
  std::string id = createOrder("120100201", false);  // the pass's barcode
  ASSERT_FALSE(id.empty());
  auto paid = post(checkoutPath(id), checkoutBody("709.00", "CARD-REF-0002", "2b9f41"));
  ASSERT_TRUE(paid);
  ASSERT_EQ(paid->status, 200) << paid->body;
  RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(bodyOf(paid));
  EXPECT_EQ(confirmation.payment().amount(), "709.00");
  EXPECT_EQ(confirmation.payment().cardSubType(), "DEBIT");
  EXPECT_FALSE(confirmation.pricing().monthlyPaymentAmount.has_value());
  EXPECT_EQ(confirmation.pricing().depositDue, "709.00");
}

TEST_F(MockCommerceTest, RefusalsCarryStatusAndBookingErrorAndTheServerKeepsServing) {
  std::string order = createOrder();
  ASSERT_FALSE(order.empty());
  std::string orders = std::string("/commerce/guests/") + kGuestKuid + "/orders";
  Json otherGuest = orderBody("AP-100201", true);
  otherGuest["kuid"] = "guest-somebody-else";
  httplib::Headers oddHeader = auth();
  oddHeader.emplace("X-Odd-Header", "\xc3\x28");
  struct Row {
    std::string name;
    std::string path;
    std::string body;
    httplib::Headers headers;
    int status;  // 0: any refusal (4xx or 5xx), whatever its body
    std::string typeId;
    std::string method = "POST";
  };
  const std::vector<Row> rows = {
      {"no token", orders, orderBody("AP-100201", true).dump(), {}, 401, "UNAUTHORIZED"},
      {"wrong token", orders, orderBody("AP-100201", true).dump(), auth("stolen"), 401, "UNAUTHORIZED"},
      {"another guest's path", "/commerce/guests/guest-9c02-bb13/orders", orderBody("AP-100201", true).dump(), auth(),
       403, "FORBIDDEN"},
      {"another guest's body", orders, otherGuest.dump(), auth(), 403, "FORBIDDEN"},
      {"malformed JSON", orders, "{\"kuid\": ", auth(), 400, "INVALID_REQUEST"},
      {"deeply nested JSON", orders, std::string(100'000, '[') + std::string(100'000, ']'), auth(), 400,
       "INVALID_REQUEST"},
      {"unknown pass", orders, orderBody("AP-999999", true).dump(), auth(), 400, "ENTITLEMENT_NOT_FOUND"},
      {"pass not renewable", orders, orderBody("AP-100205", false).dump(), auth(), 400, "ENTITLEMENT_NOT_RENEWABLE"},
      {"sunset pass", orders, orderBody("AP-100203", false).dump(), auth(), 400, "ENTITLEMENT_NOT_RENEWABLE"},
      {"no monthly plan", orders, orderBody("AP-100204", true).dump(), auth(), 400, "PAYMENT_PLAN_NOT_AVAILABLE"},
      {"unknown order", checkoutPath("ORD000000"), checkoutBody("0").dump(), auth(), 404, "ORDER_NOT_FOUND"},
      {"wrong amount", checkoutPath(order), checkoutBody("709.00").dump(), auth(), 400, "PAYMENT_AMOUNT_MISMATCH"},
      {"unknown card", checkoutPath(order), checkoutBody("0", "CARD-REF-0009").dump(), auth(), 400,
       "INVALID_PAYMENT_REFERENCE"},
      {"declined card", checkoutPath(order), checkoutBody("0", "CARD-REF-0003", "c40d22").dump(), auth(), 402,
       "PAYMENT_DECLINED"},
      {"pending order", checkoutPath(order), checkoutBody("0").dump(),
       httplib::Headers{{"Authorization", std::string("Bearer ") + kToken}, {kMockHeaderName, kPendingOrderHeaderValue}},
       500, "ORDER_PENDING"},
      {"unknown path", "/commerce/nowhere", "{}", auth(), 404, "NOT_FOUND"},
      {"wrong method", checkoutPath(order), "", auth(), 405, "METHOD_NOT_ALLOWED", "GET"},
      {"huge body", orders, std::string(3 << 20, 'x'), auth(), 0, ""},
      {"deep objects", orders, std::string(50'000, '{'), auth(), 0, ""},
      {"invalid UTF-8", orders, "{\"kuid\": \"\xff\xfe\"}", oddHeader, 0, ""},
      {"array body", checkoutPath("ORD700001"), "[1, 2, 3]", auth(), 0, ""},
      {"PUT on orders", orders, "{}", auth(), 0, "", "PUT"},
      {"DELETE on accounts", std::string("/profile/guests/") + kGuestKuid + "/payment-accounts", "", auth(), 0, "",
       "DELETE"},
      {"admin nonsense", "/__admin/faults", "{\"endpoint\": 7}", auth(), 0, ""},
      {"unknown admin", "/__admin/nothing", "", auth(), 0, "", "GET"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    httplib::Request request;
    request.method = row.method;
    request.path = row.path;
    request.headers = row.headers;
    request.body = row.body;
    if (!row.body.empty()) request.headers.emplace("Content-Type", "application/json");
    auto result = client().send(request);
    ASSERT_TRUE(result);
    if (row.status == 0) {
      EXPECT_GE(result->status, 400);
      continue;
    }
    EXPECT_EQ(result->status, row.status);
    EXPECT_EQ(typeIdOf(result), row.typeId);
  }
  EXPECT_EQ(server().charges().at(order), 0);
  auto journal = client().Get("/__admin/requests");
  ASSERT_TRUE(journal);
  EXPECT_EQ(journal->status, 200);
  EXPECT_FALSE(createOrder().empty());
}

TEST_F(MockCommerceTest, OrderIsChargedAtMostOnce) {
  std::string order = createOrder();
  auto first = post(checkoutPath(order), checkoutBody("0"));
  auto second = post(checkoutPath(order), checkoutBody("0"));
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->status, 200);
  EXPECT_EQ(second->status, 409);
  EXPECT_EQ(typeIdOf(second), "ORDER_ALREADY_PURCHASED");
  EXPECT_EQ(server().charges().at(order), 1);
  // A renewed pass is not offered for renewal again.
  auto again = post(std::string("/commerce/guests/") + kGuestKuid + "/orders", orderBody("AP-100201", true));
  ASSERT_TRUE(again);
  EXPECT_EQ(typeIdOf(again), "ENTITLEMENT_NOT_RENEWABLE");
}

TEST_F(MockCommerceTest, IdempotencyKeyReplaysTheEarlierAnswerOnlyForTheSameRequest) {
  std::string order = createOrder();
  httplib::Headers keyed = auth();
  keyed.emplace("Idempotency-Key", "key-1");
  auto first = post(checkoutPath(order), checkoutBody("0"), keyed);
  auto replay = post(checkoutPath(order), checkoutBody("0"), keyed);
  auto otherBody = post(checkoutPath(order), checkoutBody("0", "CARD-REF-0002", "2b9f41"), keyed);
  ASSERT_TRUE(first && replay && otherBody);
  EXPECT_EQ(first->status, 200);
  EXPECT_EQ(replay->status, first->status);
  EXPECT_EQ(replay->body, first->body);
  EXPECT_EQ(otherBody->status, 422);
  EXPECT_EQ(typeIdOf(otherBody), "IDEMPOTENCY_KEY_REUSED");
  EXPECT_EQ(server().charges().at(order), 1);

  // A repeated create-order key makes no second order.
  keyed.erase("Idempotency-Key");
  keyed.emplace("Idempotency-Key", "key-2");
  std::string orders = std::string("/commerce/guests/") + kGuestKuid + "/orders";
  auto created = post(orders, orderBody("AP-100202", false), keyed);
  auto createdAgain = post(orders, orderBody("AP-100202", false), keyed);
  ASSERT_TRUE(created && createdAgain);
  EXPECT_EQ(created->body, createdAgain->body);
  EXPECT_EQ(server().charges().size(), 2u);
}

}  // namespace
}  // namespace varnel::mock::testing
