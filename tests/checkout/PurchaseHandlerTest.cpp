// The purchase handler over a recording private data service: the body it
// sends, one checkout at a time, and how each answer moves its state and
// reaches the delegate.

#include <fstream>

#include <gtest/gtest.h>

#include "checkout/CheckoutTestSupport.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/Registry.h"

namespace varnel::testing {
namespace {

class PurchaseHandlerTest : public CheckoutFixture {
 protected:
  void SetUp() override {
    CheckoutFixture::SetUp();
    handler = PurchaseHandler::create();
    delegate = std::make_shared<RecordingDelegate>();
    handler->setDelegate(delegate);
  }

  /// Starts a checkout of testOrder(false) and answers nothing yet.
  void begin() { handler->beginPurchaseTransaction("ORD-1", testAccount(), testOrder(false)); }

  static Json confirmationAnswer() {
    std::ifstream in(std::string(VARNEL_TEST_RESOURCE_DIR) + "/samples/express-checkout.json");
    return Json::parse(in, nullptr, false);
  }

  std::shared_ptr<PurchaseHandler> handler;
  std::shared_ptr<RecordingDelegate> delegate;
};

TEST_F(PurchaseHandlerTest, BuildsTheWholeExpressCheckoutBody) {
  const Json expected = Json::parse(R"({
    "payments": [{
      "paymentReference": {
        "cardSubType": "VISA", "cardholderName": "Wren Holloway", "cvv2": "418", "id": "REF-7", "key": "k-7",
        "paymentCardScan": false,
        "billingName": {"firstName": "Wren", "lastName": "Holloway", "prefix": "", "middleName": "", "suffix": ""},
        "billingAddress": {"line1": "3 Fennick Yard", "line2": null, "city": "Lowmere", "stateOrProvince": "QA",
                           "postalCode": "00077", "country": "US"}
      },
      "billingPhone": {"type": "MOBILE", "number": "555-0199"},
      "amount": "709.00",
      "currency": "USD",
      "billingEmail": "wren.holloway@example.test"
    }],
    "confirmationEmails": [{"email": "w.holloway.profile@example.test", "confirmEmail": "w.holloway.profile@example.test",
                            "agentEmail": "${agent.confirm.email}", "agentConfirmEmail": "${agent.confirm.email}"}],
    "bookingTermsAndConditions": "Renewal terms."
  })");
  EXPECT_EQ(handler->parameterDictionaryForPurchase(testAccount(), testOrder(false)), expected);
}

TEST_F(PurchaseHandlerTest, BodyFollowsThePlanTheCardAndThePhones) {
  using Phone = KTVRAddress::Phone;
  struct Row {
    const char* name;
    TestCard card;
    RenewalOrder order;
    const char* pointer;
    Json expected;
  };
  const Row rows[] = {
      {"monthly plan charges nothing now", {}, testOrder(true), "/payments/0/amount", "0"},
      {"monthly plan without a total", {}, testOrder(true, std::nullopt), "/payments/0/amount", "0"},
      {"paid in full charges the total", {}, testOrder(false, "1049.50"), "/payments/0/amount", "1049.50"},
      {"paid in full without a total", {}, testOrder(false, std::nullopt), "/payments/0/amount", nullptr},
      {"no security code", {.securityCode = std::nullopt}, testOrder(false), "/payments/0/paymentReference/cvv2", "418"},
      {"empty security code", {.securityCode = ""}, testOrder(false), "/payments/0/paymentReference/cvv2", "418"},
      {"entered security code", {.securityCode = "737"}, testOrder(false), "/payments/0/paymentReference/cvv2", "737"},
      {"scanned card", {.scanned = true}, testOrder(false), "/payments/0/paymentReference/paymentCardScan", true},
      {"mobile before phone", {}, testOrder(false), "/payments/0/billingPhone",
       Json{{"type", "MOBILE"}, {"number", "555-0199"}}},
      {"phone without mobile", {.mobile = std::nullopt}, testOrder(false), "/payments/0/billingPhone",
       Json{{"type", "HOME"}, {"number", "555-0100"}}},
      {"mobile without a type", {.mobile = Phone{std::nullopt, "555-0142"}}, testOrder(false),
       "/payments/0/billingPhone", Json{{"type", ""}, {"number", "555-0142"}}},
      {"no phone at all", {.phone = std::nullopt, .mobile = std::nullopt}, testOrder(false),
       "/payments/0/billingPhone", Json{{"type", ""}, {"number", ""}}},
  };
  for (const Row& row : rows) {
    const Json body = handler->parameterDictionaryForPurchase(testAccount(row.card), row.order);
    EXPECT_EQ(body.at(Json::json_pointer(row.pointer)), row.expected) << row.name;
  }
}

TEST_F(PurchaseHandlerTest, MissingHostValuesAreLoggedAndSentAbsent) {
  host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<FakeUserProfileAuthentication>());
  host::Registry::set<KTVRAuthenticationService>(nullptr);
  const Json body = handler->parameterDictionaryForPurchase(testAccount({.withAddress = false}), testOrder(false));
  EXPECT_TRUE(body.at(Json::json_pointer("/payments/0/billingEmail")).is_null());
  EXPECT_TRUE(body.at(Json::json_pointer("/confirmationEmails/0/email")).is_null());
  EXPECT_TRUE(body.at(Json::json_pointer("/payments/0/paymentReference/billingAddress/country")).is_null());
  EXPECT_EQ(body.at(Json::json_pointer("/payments/0/billingPhone/number")), "");
  std::size_t errors = 0;
  for (const auto& line : log->lines()) errors += line.isError ? 1 : 0;
  EXPECT_EQ(errors, 2u);
}

TEST_F(PurchaseHandlerTest, WithoutAServiceNothingIsSentEver) {
  host::Registry::set<KTVRPrivateDataService>(nullptr);
  begin();
  EXPECT_TRUE(handler->isProcessingTransaction());
  host::Registry::set<KTVRPrivateDataService>(service);
  begin();
  EXPECT_TRUE(service->calls.empty());
  EXPECT_EQ(delegate->completions(), 0);
  EXPECT_TRUE(delegate->failures().empty());
}

TEST_F(PurchaseHandlerTest, SendsTheBodyAndEachAnswerMovesTheStateAndReachesTheDelegateAsItShould) {
  using Answer = std::function<void(FakePrivateDataService::Call&)>;
  auto succeed = [](std::optional<Json> value) -> Answer { return [value](auto& call) { call.success(value); }; };
  const Json declined{{"errors", Json::array({Json{{"typeId", "PAYMENT_DECLINED"}}})}};
  struct Row {
    const char* name;
    bool afterAConfirmation;  // the handler had confirmed an earlier checkout
    Answer answer;
    int completions;
    std::optional<APError> failure;
    bool busyAfter;  // a busy handler ignores a repeated submission
    bool confirmed;
  };
  const Row rows[] = {
      {"absent answer", false, succeed(std::nullopt), 1, std::nullopt, true, false},
      {"array answer", false, succeed(Json::array({1, 2})), 1, std::nullopt, true, false},
      {"text answer", false, succeed(Json("BOOKED")), 1, std::nullopt, true, false},
      {"confirmation", false, succeed(confirmationAnswer()), 1, std::nullopt, false, true},
      {"failure clears the confirmation", true,
       [&](auto& call) { call.failure(Error{"Host.Network", 402, Json{{"jsonResponse", declined}}}); }, 1,
       APError::PAYMENT_DECLINED, false, false},
      {"failure without an error changes nothing", false, [](auto& call) { call.failure(std::nullopt); }, 0,
       std::nullopt, true, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    handler = PurchaseHandler::create();
    delegate = std::make_shared<RecordingDelegate>();
    handler->setDelegate(delegate);
    service->calls.clear();
    if (row.afterAConfirmation) {
      begin();
      service->calls.back().success(confirmationAnswer());
      ASSERT_TRUE(handler->purchaseResults());
    }
    begin();
    const std::size_t sent = service->calls.size();
    // The checkout's own body, posted to the order's express checkout.
    EXPECT_EQ(service->calls.back().method, "POST");
    EXPECT_EQ(service->calls.back().target, "https://commerce.example.test/orders/ORD-1/express-checkout");
    EXPECT_EQ(service->calls.back().parameters, handler->parameterDictionaryForPurchase(testAccount(), testOrder(false)));
    row.answer(service->calls.back());
    EXPECT_EQ(delegate->completions(), row.completions);
    const auto failures = delegate->failures();
    ASSERT_EQ(failures.size(), row.failure ? 1u : 0u);
    if (row.failure) {
      EXPECT_EQ(failures[0].domain, kAPErrorDomain);
      EXPECT_EQ(failures[0].code, rawValue(*row.failure));
    }
    EXPECT_EQ(handler->isProcessingTransaction(), row.busyAfter);
    EXPECT_EQ(handler->purchaseResults().has_value(), row.confirmed);
    if (row.confirmed) {
      EXPECT_EQ(handler->purchaseResults()->confirmationNumber(), "KX4419027");
    }
    begin();
    EXPECT_EQ(service->calls.size(), row.busyAfter ? sent : sent + 1);
  }
}

TEST_F(PurchaseHandlerTest, AnswersReachNobodyOnceTheHandlerIsGone) {
  begin();
  begin();  // ignored, but proves nothing else was sent
  ASSERT_EQ(service->calls.size(), 1u);
  auto call = service->calls[0];
  handler.reset();
  call.success(confirmationAnswer());
  call.failure(Error{"Host.Network", 7, Json::object()});
  EXPECT_EQ(delegate->completions(), 0);
  EXPECT_TRUE(delegate->failures().empty());
}

TEST_F(PurchaseHandlerTest, HoldsItsDelegateWeakly) {
  std::weak_ptr<RecordingDelegate> watched = delegate;
  delegate.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(handler->delegate(), nullptr);
  begin();
  service->calls[0].success(confirmationAnswer());
  EXPECT_TRUE(handler->purchaseResults());
  EXPECT_FALSE(handler->isProcessingTransaction());
}

}  // namespace
}  // namespace varnel::testing
