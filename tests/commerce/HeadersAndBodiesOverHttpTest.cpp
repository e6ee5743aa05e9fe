// What the commerce service receives from the module over loopback HTTP: the
// test headers and how long they stay, guest identifiers in paths, the
// order bodies under the tester switches, and a checkout whose answer was
// lost on the way back, and a whole renewal over HTTPS.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "commerce/CommerceOverHttpSupport.h"
#include "standalone/TemporaryDirectory.h"
#include "support/TestCertificates.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/ApplicationBundle.h"
#include "varnel/host/ENTMDebugSettings.h"
#include "varnel/mock/MockFault.h"
#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/standalone/GuestFileEntitlementsParser.h"
#include "varnel/standalone/network/HttpClient.h"
#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using H = CommerceTestHeaders;
using C = VNLVarnel::Constants;

std::string text(std::string_view view) { return std::string(view); }

class HeadersAndBodiesOverHttpTest : public CommerceOverHttpTest {
 protected:
  /// The ENV2 headers a journalled request carries, by name.
  static std::map<std::string, std::optional<std::string>> env2HeadersOf(const Json& request) {
    std::map<std::string, std::optional<std::string>> headers;
    for (std::string_view name : {H::kSFServiceHost, H::kTKXServiceHost, H::kTKXServicePath, H::kPanlookEnv}) {
      headers[text(name)] = headerOf(request, name);
    }
    return headers;
  }

  std::map<std::string, std::optional<std::string>> env2Headers(bool withEnvironmentName) const {
    return {{text(H::kSFServiceHost), server->baseUrl() + "/"},
            {text(H::kTKXServiceHost), text(H::kTKXQAHost)},
            {text(H::kTKXServicePath), text(H::kTKXServicePathValue)},
            {text(H::kPanlookEnv), withEnvironmentName ? std::optional(text(H::kPanlookEnvValue)) : std::nullopt}};
  }

  static std::map<std::string, std::optional<std::string>> noEnv2Headers() {
    return {{text(H::kSFServiceHost), std::nullopt},
            {text(H::kTKXServiceHost), std::nullopt},
            {text(H::kTKXServicePath), std::nullopt},
            {text(H::kPanlookEnv), std::nullopt}};
  }
};

TEST_F(HeadersAndBodiesOverHttpTest, Env2HeadersStayWithEveryLaterOrderButTheContractAsksEachTime) {
  enum class Call { order, contract };
  struct Step {
    const char* what;
    Call call;
    bool env2;
    bool expectEnv2;
  };
  const std::string orderId = placeOrder();
  ASSERT_FALSE(orderId.empty());
  const std::vector<Step> steps = {
      {"order before the switch", Call::order, false, false},
      {"contract before the switch", Call::contract, false, false},
      {"order with the switch on", Call::order, true, true},
      {"contract with the switch on", Call::contract, true, true},
      {"order after the switch is off", Call::order, false, true},
      {"contract after the switch is off", Call::contract, false, false},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    defaults->setBool(C::varnelEnv2HeaderKey, step.env2);
    server->clearJournal();
    const Outcome outcome = step.call == Call::order ? createOrder() : contract(orderId);
    EXPECT_TRUE(outcome.onlySucceeded());
    auto sent = requestsTo(step.call == Call::order ? "create-orders" : "create-contract");
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(env2HeadersOf(sent[0]), step.expectEnv2 ? env2Headers(true) : noEnv2Headers());
  }
}

TEST_F(HeadersAndBodiesOverHttpTest, PendingOrderHeaderStaysUntilAnEnv2CheckoutReplacesIt) {
  struct Step {
    const char* what;
    bool pending;
    bool env2;
    bool expectMockHeader;
    bool expectPaid;
  };
  const std::vector<Step> steps = {
      {"pending switch on", true, false, true, false},
      {"pending switch off", false, false, true, false},
      {"ENV2 switch on", false, true, false, true},
  };
  const std::string orderId = placeOrder();
  ASSERT_FALSE(orderId.empty());
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    defaults->setBool(C::VarnelPendingOrderHeaderKey, step.pending);
    defaults->setBool(C::varnelEnv2HeaderKey, step.env2);
    server->clearJournal();
    const Outcome outcome = checkout(orderId);
    auto sent = requestsTo("create-order-purchase");
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(headerOf(sent[0], H::kMockAP),
              step.expectMockHeader ? std::optional(text(H::kPendingOrderValue)) : std::nullopt);
    EXPECT_EQ(env2HeadersOf(sent[0]), step.env2 ? env2Headers(false) : noEnv2Headers());
    EXPECT_EQ(server->charges().at(orderId), step.expectPaid ? 1 : 0);
    if (step.expectPaid) {
      EXPECT_TRUE(outcome.onlySucceeded());
    } else {
      // The pending-order refusal: a 500 whose body the module knows only as a booking failure.
      ASSERT_TRUE(outcome.onlyFailed());
      EXPECT_EQ(outcome.error, toError(APError::GeneralBookingServiceError));
      EXPECT_THAT(serverLog(), Contains("POST /commerce/orders/" + orderId + "/express-checkout 500"));
    }
  }
}

TEST_F(HeadersAndBodiesOverHttpTest, ReservedCharactersOfTheGuestReachTheServicePercentEncoded) {
  // A household whose guest identifier holds characters a URL path reserves.
  standalone::GuestData guest = sampleGuest();
  const std::string kuid = "{4f21 aa07}?#@%";
  const std::string encoded = "%7B4f21%20aa07%7D%3F%23%40%25";
  guest.kuid = kuid;
  start(guest, kuid);
  struct Row {
    const char* what;
    bool env2Cards;
    std::string endpoint;
    std::string encodedPath;
    std::string decodedPath;
  };
  const std::vector<Row> rows = {
      {"cards", false, "get-payment-accounts", "/profile/guests/" + encoded + "/payment-accounts",
       "/profile/guests/" + kuid + "/payment-accounts"},
      {"ENV2 cards", true, "get-payment-accounts", "/env2/assembly/guest/id;kuid=" + encoded + "/payment-accounts",
       "/env2/assembly/guest/id;kuid=" + kuid + "/payment-accounts"},
      {"order", false, "create-orders", "/commerce/guests/" + encoded + "/orders",
       "/commerce/guests/" + kuid + "/orders"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    defaults->setBool(C::VarnelENV2ForPaymentKey, row.env2Cards);
    server->clearJournal();
    log->clear();
    const Outcome outcome = row.endpoint == "create-orders" ? createOrder() : accounts();
    // The service took the path apart into this very guest, so it was sent encoded.
    EXPECT_TRUE(outcome.onlySucceeded()) << (outcome.error ? localizedDescription(*outcome.error) : "");
    auto sent = requestsTo(row.endpoint);
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0]["path"], row.decodedPath);
    EXPECT_THAT(log->messages(), Contains(HasSubstr(row.encodedPath)));
  }
}

TEST_F(HeadersAndBodiesOverHttpTest, AnotherGuestsIdentifierIsRefused) {
  // The token stays the household's; the signed-in guest and the order name someone else.
  const std::string stranger = "guest-0000-other";
  start(sampleGuest(), stranger);
  const Outcome cards = accounts();
  ASSERT_TRUE(cards.onlyFailed());
  ASSERT_TRUE(cards.error.has_value());
  EXPECT_EQ(cards.error->domain, standalone::kHTTPErrorDomain);
  EXPECT_EQ(cards.error->code, 403);
  EXPECT_EQ(cards.error->userInfo[kErrorJsonResponseKey]["errors"][0]["typeId"], "FORBIDDEN");

  const Outcome order = createOrder(VNLCreateOrderParameters(park, stranger, {}, true));
  ASSERT_TRUE(order.onlyFailed());
  EXPECT_EQ(order.error, toError(APError::GeneralBookingServiceError));
  auto sent = requestsTo("create-orders");
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0]["path"], "/commerce/guests/" + stranger + "/orders");
}

TEST_F(HeadersAndBodiesOverHttpTest, TesterSwitchesShapeTheOrderBody) {
  struct Row {
    const char* what;
    KTVCResortChoice resort;
    bool debugContext;
    std::string storeId;
    std::string destinationId;
  };
  const std::vector<Row> rows = {
      {"east", kResortChoiceEast, false, "oqs_mobile", "80007798"},
      {"east, debug context", kResortChoiceEast, true, "oqs", "80007798"},
      {"west, debug context", kResortChoiceWest, true, "zlt", "80008297"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    park.setResortChoice(row.resort);
    defaults->setBool(ENTMDebugSettings::contextKey, row.debugContext);
    server->clearJournal();
    EXPECT_TRUE(createOrder(false).onlySucceeded());
    auto sent = requestsTo("create-orders");
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0]["body"]["storeId"], row.storeId);
    EXPECT_EQ(sent[0]["body"]["destinationId"], row.destinationId);
  }
}

TEST_F(HeadersAndBodiesOverHttpTest, EntitlementMockSwitchSendsTheCannedPasses) {
  std::ifstream file(std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "app" / "mockEVAS2.json");
  const Json canned = Json::parse(file, nullptr, false);
  ASSERT_TRUE(canned.is_array());
  std::vector<std::pair<std::string, std::string>> expected;  // pass barcode, holder
  for (const Json& pass : canned) expected.emplace_back(pass.value("barcodeString", ""), pass.value("ownerKuid", ""));

  // The host's application bundle and entitlement parser, which read the canned passes.
  const auto appDirectory = std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "app";
  host::Registry::set(std::make_shared<ApplicationBundle>(ApplicationBundle{appDirectory}));
  host::Registry::set<ENTMTicketsAndAPsParsing>(std::make_shared<standalone::GuestFileEntitlementsParser>());
  defaults->setBool(C::varnelEntitlementMockKey, true);
  const Outcome outcome = createOrder();
  auto sent = requestsTo("create-orders");
  ASSERT_EQ(sent.size(), 1u);
  std::vector<std::pair<std::string, std::string>> products;
  for (const Json& product : sent[0]["body"]["products"]) {
    products.emplace_back(product.value("entitlementId", ""), product.value("guestId", ""));
  }
  EXPECT_EQ(products, expected);
  // The canned holders are not of this household, so the service refuses the order.
  ASSERT_TRUE(outcome.onlyFailed());
  EXPECT_EQ(outcome.error, toError(APError::GeneralBookingServiceError));
}

TEST_F(HeadersAndBodiesOverHttpTest, LostCheckoutAnswerIsRecoveredWithoutASecondCharge) {
  const std::string orderId = placeOrder();
  ASSERT_FALSE(orderId.empty());
  ASSERT_FALSE(server->setFault(mock::EndpointFault::parse("create-order-purchase=reset-after*1").value()));

  const Outcome paid = checkout(orderId);
  ASSERT_TRUE(paid.onlySucceeded());
  EXPECT_EQ(paid.value->value("status", ""), "BOOKED");
  EXPECT_EQ(server->charges().at(orderId), 1);
  auto sent = requestsTo("create-order-purchase");
  ASSERT_EQ(sent.size(), 2u);
  const auto key = headerOf(sent[0], standalone::kIdempotencyKeyHeader);
  ASSERT_TRUE(key.has_value());
  EXPECT_EQ(headerOf(sent[1], standalone::kIdempotencyKeyHeader), key);

  // Once answered, the same payment again is a new request, and the order is already paid.
  const Outcome again = checkout(orderId);
  ASSERT_TRUE(again.onlyFailed());
  EXPECT_EQ(again.error, toError(APError::GeneralBookingServiceError));
  EXPECT_EQ(server->charges().at(orderId), 1);
  auto all = requestsTo("create-order-purchase");
  ASSERT_EQ(all.size(), 3u);
  EXPECT_NE(headerOf(all[2], standalone::kIdempotencyKeyHeader), key);
}

TEST_F(HeadersAndBodiesOverHttpTest, ARenewalOverHttpsTakesOneConnectionAndOneHandshake) {
  TemporaryDirectory directory;
  TestCertificates authority(directory.path);
  const ServerCertificate certificate = authority.issue("mock-commerce");
  tls = mock::TlsFiles{certificate.certificate, certificate.key};
  trustedCa = authority.caFile();
  start(household, household.kuid);
  ASSERT_TRUE(server->baseUrl().starts_with("https://127.0.0.1:"));

  ASSERT_TRUE(accounts().onlySucceeded());
  const std::string orderId = placeOrder();
  ASSERT_FALSE(orderId.empty());
  ASSERT_TRUE(contract(orderId).onlySucceeded());
  ASSERT_TRUE(checkout(orderId).onlySucceeded());
  EXPECT_EQ(server->charges()[orderId], 1);
  EXPECT_EQ(server->tlsHandshakes(), 1);
  EXPECT_EQ(networking.client->transport().connectionsOpened(), 1);
}

}  // namespace
}  // namespace varnel::testing
