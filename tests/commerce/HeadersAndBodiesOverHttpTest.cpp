// What the commerce service receives from the module over loopback HTTP: the
// pending-order and ENV2 headers of a checkout, guest identifiers in paths,
// the canned passes of the entitlement switch in the order body, a tester's
// routed server error, and a whole renewal over HTTPS.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "support/CommerceOverHttp.h"
#include "standalone/TemporaryDirectory.h"
#include "support/TestCertificates.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/ApplicationBundle.h"
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

  /// What an ENV2 checkout carries: the service hosts, no environment name.
  std::map<std::string, std::optional<std::string>> env2Headers() const {
    return {{text(H::kSFServiceHost), server->baseUrl() + "/"},
            {text(H::kTKXServiceHost), text(H::kTKXQAHost)},
            {text(H::kTKXServicePath), text(H::kTKXServicePathValue)},
            {text(H::kPanlookEnv), std::nullopt}};
  }

  static std::map<std::string, std::optional<std::string>> noEnv2Headers() {
    return {{text(H::kSFServiceHost), std::nullopt},
            {text(H::kTKXServiceHost), std::nullopt},
            {text(H::kTKXServicePath), std::nullopt},
            {text(H::kPanlookEnv), std::nullopt}};
  }
};

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
    EXPECT_EQ(env2HeadersOf(sent[0]), step.env2 ? env2Headers() : noEnv2Headers());
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

// While the routing switch is on, every request carries the stored routing
// header and meets the fault routed to its value; switched off, it goes through.
TEST_F(HeadersAndBodiesOverHttpTest, RoutedRequestsMeetTheirSimulatedErrorUntilRoutingIsOff) {
  auto routed = mock::RouteFault::parse("E503=booking:SYSTEM_UNAVAILABLE");
  ASSERT_TRUE(routed.ok());
  routeFaults = {routed.value()};
  start(sampleGuest(), sampleGuest().kuid);
  defaults->setObject(kServerErrorRoutingHeaderKey,
                      DefaultsDictionary{{"X-Orvane-Internal-Mock-AP", DefaultsValue("E503")}});

  defaults->setBool(kServerErrorRoutingUseFeatureKey, true);
  const Outcome failed = createOrder();
  ASSERT_TRUE(failed.onlyFailed());
  EXPECT_EQ(failed.error, toError(APError::SYSTEM_UNAVAILABLE));
  EXPECT_EQ(headerOf(requestsTo("create-orders").back(), "X-Orvane-Internal-Mock-AP"), "E503");

  defaults->setBool(kServerErrorRoutingUseFeatureKey, false);
  EXPECT_TRUE(createOrder().onlySucceeded());
  EXPECT_EQ(headerOf(requestsTo("create-orders").back(), "X-Orvane-Internal-Mock-AP"), std::nullopt);
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
