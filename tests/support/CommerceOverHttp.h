#pragma once
// The commerce requests sent for real: a mock commerce server on a free
// loopback port serving the sample household, the stand-alone networking
// pointed at it with quick retries and a short timeout, and the module's
// requests called through the registered private data service. Whatever a
// test sends or fails, no access token, e-mail address or security code
// reaches the log. For suites that link the mock commerce service.

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mockcommerce/MockCommerceTestSupport.h"
#include "support/Fakes.h"
#include "support/QuickNetworking.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/Registry.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::testing {

/// The sample household's pass that renews now, with a monthly plan or in full.
inline constexpr const char* kSamplePass = "AP-100201";

/// What reached a request's callbacks once nothing was left in flight.
struct Outcome {
  int successes = 0;
  int failures = 0;
  std::optional<Json> value;
  std::optional<Error> error;

  bool onlySucceeded() const { return successes == 1 && failures == 0; }
  bool onlyFailed() const { return successes == 0 && failures == 1; }
  bool silent() const { return successes == 0 && failures == 0; }
};

// The sample guest file, and the body that pays an amount with its first
// stored card (checkout and contract alike), as the mock server's own tests
// use them.
using mock::testing::checkoutBody;
using mock::testing::headerOf;
using mock::testing::sampleGuest;

class CommerceOverHttpTest : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    household = sampleGuest();
    start(household, household.kuid);
  }

  void TearDown() override {
    stop();
    std::vector<std::string> secrets = {"cvv2"};
    for (const auto& secret : {household.accessToken, household.email}) {
      if (secret) secrets.push_back(*secret);
    }
    for (const std::string& line : log->messages()) {
      for (const std::string& secret : secrets) EXPECT_EQ(line.find(secret), std::string::npos) << line;
    }
    HostFixture::TearDown();
  }

  /// Stops what runs, then serves `guest` on a fresh mock (nothing charged,
  /// no faults) and installs the networking with its token; `signedIn` is the
  /// signed-in guest (none: nobody). The override-header tables are emptied.
  void start(standalone::GuestData guest, std::optional<std::string> signedIn) {
    stop();
    household = std::move(guest);
    mock::MockCommerceOptions options;
    options.guest = household;
    options.routeFaults = routeFaults;
    options.tls = tls;
    options.keepAlive = keepAlive;
    auto started = mock::MockCommerceServer::start(std::move(options));
    ASSERT_TRUE(started.ok()) << localizedDescription(started.error());
    server = std::move(started.value());
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(signedIn, household.email));
    networking = installQuickNetworking(server->baseUrl(), household.accessToken, trustedCa);
  }

  void stop() {
    resetOverriddenHeadersForTesting();
    standalone::uninstallStandaloneNetworking();
    networking = {};
    if (server) server->stop();
    server.reset();
  }

  /// Waits until the networking has nothing in flight and its worker has run
  /// what was posted before: every callback that will ever run has run.
  void settle() {
    if (networking.client) settleNetworking(*networking.client);
  }

  /// Calls `send` with the registered private data service (as a host hands
  /// it to the module) and recording callbacks, then settles.
  using Send = std::function<void(KTVRPrivateDataService&, KTVRSuccessBlock, KTVRFailureBlock)>;
  Outcome run(const Send& send) {
    const auto service = KTVRPrivateDataService::sharedInstance();
    if (!service || !networking.client) {
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
    settle();
    std::lock_guard lock(recorded->mutex);
    return recorded->outcome;
  }

  Outcome accounts() {
    return run([](auto& service, auto success, auto failure) { profileAccounts(service, success, failure); });
  }
  Outcome createOrder(const VNLCreateOrderParameters& parameters) {
    return run([&](auto& service, auto success, auto failure) {
      createOrderRequest(service, parameters, success, failure);
    });
  }
  /// An order for the sample pass, made by the signed-in household guest.
  Outcome createOrder(bool monthlyPlan = true) {
    const std::string kuid = household.kuid.value_or("");
    const Json product{{"categoryId", "AnnualPassRenewal"},
                       {"quantity", 1},
                       {"entitlementId", kSamplePass},
                       {"guestIdType", "kuid"},
                       {"guestId", kuid}};
    return createOrder(VNLCreateOrderParameters(park, kuid, {product}, monthlyPlan));
  }
  Outcome contract(const std::string& orderId, const Json& body = checkoutBody("0")) {
    return run([&](auto& service, auto success, auto failure) {
      monthlyContractRequest(service, orderId, body, success, failure);
    });
  }
  Outcome checkout(const std::string& orderId, const Json& body = checkoutBody("0")) {
    return run([&](auto& service, auto success, auto failure) {
      createExpressCheckout(service, orderId, body, success, failure);
    });
  }

  /// Creates a monthly-plan order for the sample pass and gives its id
  /// (empty, with a test failure, when the mock refuses).
  std::string placeOrder() {
    const Outcome order = createOrder(true);
    EXPECT_TRUE(order.onlySucceeded()) << (order.error ? localizedDescription(*order.error) : "");
    return order.value ? order.value->value("id", "") : "";
  }

  /// The journalled requests of one endpoint key, oldest first.
  std::vector<Json> requestsTo(std::string_view endpoint) const {
    std::vector<Json> requests;
    for (const Json& entry : server->journal()) {
      if (entry.value("endpoint", Json()) == endpoint) requests.push_back(entry);
    }
    return requests;
  }
  int chargesOf(const std::string& orderId) const {
    const auto charges = server->charges();
    const auto it = charges.find(orderId);
    return it == charges.end() ? 0 : it->second;
  }
  /// Log lines that start with `prefix`.
  std::vector<std::string> logLinesStartingWith(std::string_view prefix) const {
    std::vector<std::string> lines;
    for (const std::string& line : log->messages()) {
      if (line.starts_with(prefix)) lines.push_back(line);
    }
    return lines;
  }

  standalone::GuestData household;
  /// Faults the next start() gives the mock, by routing-header value.
  std::vector<mock::RouteFault> routeFaults;
  /// The next start() serves HTTPS with these files, trusting `trustedCa`.
  std::optional<mock::TlsFiles> tls;
  std::optional<std::filesystem::path> trustedCa;
  /// The next start()'s mock closes connections idle this long.
  std::chrono::seconds keepAlive{5};
  std::unique_ptr<mock::MockCommerceServer> server;
  standalone::StandaloneNetworking networking;
  KTVCParkResortContext park{kResortChoiceEast};
};

}  // namespace varnel::testing
