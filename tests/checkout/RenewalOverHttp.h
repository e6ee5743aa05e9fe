#pragma once
// A renewal sent for real: a mock commerce server on a free loopback port
// serving the sample household, the stand-alone networking pointed at it
// (quick retries, short timeout), and the steps a host takes before the
// checkout: an order, the stored cards.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "checkout/CheckoutTestSupport.h"
#include "mockcommerce/MockCommerceTestSupport.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::testing {

/// The sample household's pass that renews now, with a monthly plan or in full.
inline constexpr const char* kRenewablePass = "AP-100201";

class RenewalOverHttpTest : public HostFixture {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Stops what runs and serves the household afresh (nothing charged, no
  /// faults), with the networking pointed at the new server.
  void restart();
  void stop();

  /// Calls `send` with callbacks that record the answer, then waits until
  /// every callback that will ever run has run; none when neither ran.
  struct Answer {
    bool succeeded = false;
    std::optional<Json> value;
    std::optional<Error> error;
  };
  std::optional<Answer> run(const std::function<void(KTVRPrivateDataService&, KTVRSuccessBlock, KTVRFailureBlock)>& send);

  /// Waits until the networking has nothing in flight and its worker has run
  /// what was posted before.
  void settle();

  /// A renewal order of kRenewablePass, its plan set by the caller as a host does.
  RenewalOrder placeOrder(bool monthlyPlan);
  /// The stored card with this reference, with `securityCode` entered.
  PaymentAccount storedCard(const std::string& reference, const std::string& securityCode = "");

  /// Journalled requests to one endpoint key.
  std::vector<Json> requestsTo(std::string_view endpoint) const;
  int chargesOf(const std::string& orderId) const;

  standalone::GuestData household;
  std::unique_ptr<mock::MockCommerceServer> server;
  standalone::StandaloneNetworking networking;
  KTVCParkResortContext park{kResortChoiceEast};
};

using mock::testing::headerOf;

}  // namespace varnel::testing
