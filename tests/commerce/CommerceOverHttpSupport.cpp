#include "commerce/CommerceOverHttpSupport.h"

#include <mutex>

#include "support/QuickNetworking.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::testing {

struct CommerceOverHttpTest::ServerLog {
  mutable std::mutex mutex;
  std::vector<std::string> lines;
};

void CommerceOverHttpTest::SetUp() {
  HostFixture::SetUp();
  household = sampleGuest();
  start(household, household.kuid);
}

void CommerceOverHttpTest::TearDown() {
  stop();
  // Whatever was sent or failed, nothing secret reached the log.
  std::vector<std::string> secrets = {"cvv2"};
  for (const auto& secret : {household.accessToken, household.email}) {
    if (secret) secrets.push_back(*secret);
  }
  for (const std::string& line : log->messages()) {
    for (const std::string& secret : secrets) EXPECT_EQ(line.find(secret), std::string::npos) << line;
  }
  HostFixture::TearDown();
}

void CommerceOverHttpTest::start(standalone::GuestData guest, std::optional<std::string> signedIn) {
  stop();
  household = std::move(guest);
  serverLog_ = std::make_shared<ServerLog>();
  mock::MockCommerceOptions options;
  options.guest = household;
  options.routeFaults = routeFaults;
  options.tls = tls;
  options.requestLog = [log = serverLog_](const std::string& line) {
    std::lock_guard lock(log->mutex);
    log->lines.push_back(line);
  };
  auto started = mock::MockCommerceServer::start(std::move(options));
  ASSERT_TRUE(started.ok()) << localizedDescription(started.error());
  server = std::move(started.value());

  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(signedIn, household.email));
  networking = installQuickNetworking(server->baseUrl(), household.accessToken, trustedCa);
}

void CommerceOverHttpTest::stop() {
  resetOverriddenHeadersForTesting();
  standalone::uninstallStandaloneNetworking();
  networking = {};
  if (server) server->stop();
  server.reset();
}

Outcome CommerceOverHttpTest::run(const Send& send) {
  // The module is handed whatever the host registered, as a host would do.
  const auto service = KTVRPrivateDataService::sharedInstance();
  const auto client = networking.client;
  if (!service || !client) {
    ADD_FAILURE() << "no networking installed";
    return {};
  }
  struct Recorded {
    std::mutex mutex;
    Outcome outcome;
  };
  auto recorded = std::make_shared<Recorded>();
  send(
      *service,
      [recorded](const std::optional<Json>& value) {
        std::lock_guard lock(recorded->mutex);
        ++recorded->outcome.successes;
        recorded->outcome.value = value;
      },
      [recorded](const std::optional<Error>& error) {
        std::lock_guard lock(recorded->mutex);
        ++recorded->outcome.failures;
        recorded->outcome.error = error;
      });
  settleNetworking(*client);
  std::lock_guard lock(recorded->mutex);
  return recorded->outcome;
}

Outcome CommerceOverHttpTest::accounts() {
  return run([](auto& service, auto success, auto failure) { profileAccounts(service, success, failure); });
}

Outcome CommerceOverHttpTest::createOrder(const VNLCreateOrderParameters& parameters) {
  return run([&](auto& service, auto success, auto failure) {
    createOrderRequest(service, parameters, success, failure);
  });
}

Outcome CommerceOverHttpTest::createOrder(bool monthlyPlan) {
  const std::string kuid = household.kuid.value_or("");
  const Json product{{"categoryId", "AnnualPassRenewal"},
                     {"quantity", 1},
                     {"entitlementId", kSamplePass},
                     {"guestIdType", "kuid"},
                     {"guestId", kuid}};
  return createOrder(VNLCreateOrderParameters(park, kuid, {product}, monthlyPlan));
}

Outcome CommerceOverHttpTest::contract(const std::string& orderId, const Json& body) {
  return run([&](auto& service, auto success, auto failure) {
    monthlyContractRequest(service, orderId, body, success, failure);
  });
}

Outcome CommerceOverHttpTest::checkout(const std::string& orderId, const Json& body) {
  return run([&](auto& service, auto success, auto failure) {
    createExpressCheckout(service, orderId, body, success, failure);
  });
}

std::string CommerceOverHttpTest::placeOrder() {
  const Outcome order = createOrder(true);
  EXPECT_TRUE(order.onlySucceeded()) << (order.error ? localizedDescription(*order.error) : "");
  return order.value ? order.value->value("id", "") : "";
}

std::vector<Json> CommerceOverHttpTest::requestsTo(std::string_view endpoint) const {
  std::vector<Json> requests;
  for (const Json& entry : server->journal()) {
    if (entry.value("endpoint", Json()) == endpoint) requests.push_back(entry);
  }
  return requests;
}

std::vector<std::string> CommerceOverHttpTest::serverLog() const {
  std::lock_guard lock(serverLog_->mutex);
  return serverLog_->lines;
}

std::vector<std::string> CommerceOverHttpTest::logLinesStartingWith(std::string_view prefix) const {
  std::vector<std::string> lines;
  for (const std::string& line : log->messages()) {
    if (line.starts_with(prefix)) lines.push_back(line);
  }
  return lines;
}

}  // namespace varnel::testing
