#pragma once
// The four commerce requests sent for real: a mock commerce server on a free
// loopback port serving the sample household, the stand-alone networking
// pointed at it with quick retries and a short timeout, and the module's
// requests called through the registered private data service.

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Fakes.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "mockcommerce/MockCommerceTestSupport.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::testing {

/// The sample household's pass that renews with a monthly plan, and its holder.
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
using mock::testing::sampleGuest;

class CommerceOverHttpTest : public HostFixture {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Stops what runs, then serves `household` on a fresh mock and installs
  /// the networking with its token; `signedIn` is the signed-in guest (none:
  /// nobody). The override-header tables are emptied.
  void start(standalone::GuestData household, std::optional<std::string> signedIn);
  void stop();

  Outcome accounts();
  Outcome createOrder(const VNLCreateOrderParameters& parameters);
  /// An order for the sample pass, made by the signed-in household guest.
  Outcome createOrder(bool monthlyPlan = true);
  Outcome contract(const std::string& orderId, const Json& body = checkoutBody("0"));
  Outcome checkout(const std::string& orderId, const Json& body = checkoutBody("0"));

  /// Creates a monthly-plan order for the sample pass and gives its id
  /// (empty, with a test failure, when the mock refuses).
  std::string placeOrder();

  /// Calls `send` with the registered private data service and recording
  /// callbacks, then waits until the client has nothing in flight and its
  /// worker has run what was posted before: every callback that will ever
  /// run has run.
  using Send = std::function<void(KTVRPrivateDataService&, KTVRSuccessBlock, KTVRFailureBlock)>;
  Outcome run(const Send& send);

  /// The journalled requests of one endpoint key, oldest first.
  std::vector<Json> requestsTo(std::string_view endpoint) const;
  /// Lines the mock wrote about the requests ("POST /path 500").
  std::vector<std::string> serverLog() const;
  /// Log lines that start with `prefix`.
  std::vector<std::string> logLinesStartingWith(std::string_view prefix) const;

  standalone::GuestData household;
  /// Faults the next start() gives the mock, by routing-header value.
  std::vector<mock::RouteFault> routeFaults;
  /// The next start() serves HTTPS with these files, trusting `trustedCa`.
  std::optional<mock::TlsFiles> tls;
  std::optional<std::filesystem::path> trustedCa;
  std::unique_ptr<mock::MockCommerceServer> server;
  standalone::StandaloneNetworking networking;
  KTVCParkResortContext park{kResortChoiceEast};

 private:
  struct ServerLog;
  std::shared_ptr<ServerLog> serverLog_;
};

using mock::testing::headerOf;

}  // namespace varnel::testing
