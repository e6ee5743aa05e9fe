#pragma once
// What the checkout suites share: a guest's stored card and a renewal order
// made in code, a delegate that records what the purchase handler tells it,
// and a fixture whose host has fake networking, a signed-in guest and a
// profile with an e-mail address.

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "support/Fakes.h"
#include "support/NetworkFakes.h"
#include "varnel/checkout/PurchaseHandler.h"
#include "varnel/purchase/PaymentAccount.h"
#include "varnel/purchase/RenewalOrder.h"

namespace varnel::testing {

inline constexpr const char* kSignedInEmail = "wren.holloway@example.test";
inline constexpr const char* kProfileEmail = "w.holloway.profile@example.test";
inline constexpr const char* kCheckoutUrl = "https://commerce.example.test/orders/{order-id}/express-checkout";
inline constexpr const char* kContractUrl = "https://commerce.example.test/orders/{order-id}/contract";

/// How a test card differs from the plain stored one.
struct TestCard {
  std::optional<std::string> securityCode = std::nullopt;
  bool scanned = false;
  std::optional<KTVRAddress::Phone> phone = KTVRAddress::Phone{"HOME", "555-0100"};
  std::optional<KTVRAddress::Phone> mobile = KTVRAddress::Phone{"MOBILE", "555-0199"};
  bool withAddress = true;
};

/// A VISA card of Wren Holloway, reference "REF-7"/"k-7", billed to an
/// address in Lowmere, state "QA", country "US".
PaymentAccount testAccount(const TestCard& choice = {});

/// An order "ORD-1" with the terms "Renewal terms.", in USD.
RenewalOrder testOrder(bool monthlyPlan, std::optional<std::string> total = std::string("709.00"));

/// Records the handler's callbacks; safe from any thread.
class RecordingDelegate final : public PurchaseHandlerDelegate {
 public:
  void purchaseHandlerDidComplete(PurchaseHandler& handler) override;
  void purchaseHandlerDidFail(const Error& error, PurchaseHandler& handler) override;

  int completions() const;
  std::vector<Error> failures() const;

 private:
  mutable std::mutex mutex_;
  int completions_ = 0;
  std::vector<Error> failures_;
};

/// Fake private data service, URL session and environment in the registry,
/// a signed-in guest with kSignedInEmail and a profile with kProfileEmail.
class CheckoutFixture : public HostFixture {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::shared_ptr<FakePrivateDataService> service;
  std::shared_ptr<FakeURLSession> session;
};

}  // namespace varnel::testing
