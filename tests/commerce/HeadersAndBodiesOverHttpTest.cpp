// What the commerce service receives from the module over loopback HTTP:
// guest identifiers in paths, the canned passes of the entitlement switch in the order body, a tester's
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

namespace varnel::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using C = VNLVarnel::Constants;

using HeadersAndBodiesOverHttpTest = CommerceOverHttpTest;

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
