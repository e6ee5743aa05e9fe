#include "checkout/CheckoutTestSupport.h"

#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::testing {

PaymentAccount testAccount(const TestCard& choice) {
  auto address = std::make_shared<KTVRAddress>();
  address->line1 = "3 Fennick Yard";
  address->city = "Lowmere";
  address->state = KTVRAddress::Region{"Quarrow", "QA"};
  address->country = KTVRAddress::Region{"United States", "US"};
  address->zipCode = "00077";
  address->phoneNumber = choice.phone;
  address->mobilePhone = choice.mobile;
  CreditCard card(true, true, "4111111111111111", "09/30", "09", "2030", "VISA", "CREDIT_CARD", "REF-7", "k-7",
                  choice.securityCode, choice.scanned);
  return PaymentAccount(CardGuestDetails("Wren", "Holloway"), card,
                        choice.withAddress ? std::shared_ptr<const KTVRAddress>(address) : nullptr);
}

RenewalOrder testOrder(bool monthlyPlan, std::optional<std::string> total) {
  RenewalOrder order;
  order.orderId = "ORD-1";
  order.paymentPlan = monthlyPlan;
  order.pricing.total = std::move(total);
  order.pricing.currency = "USD";
  order.bookingTermsAndConditions = "Renewal terms.";
  return order;
}

void RecordingDelegate::purchaseHandlerDidComplete(PurchaseHandler&) {
  std::lock_guard lock(mutex_);
  ++completions_;
}

void RecordingDelegate::purchaseHandlerDidFail(const Error& error, PurchaseHandler&) {
  std::lock_guard lock(mutex_);
  failures_.push_back(error);
}

int RecordingDelegate::completions() const {
  std::lock_guard lock(mutex_);
  return completions_;
}

std::vector<Error> RecordingDelegate::failures() const {
  std::lock_guard lock(mutex_);
  return failures_;
}

void CheckoutFixture::SetUp() {
  HostFixture::SetUp();
  resetOverriddenHeadersForTesting();
  service = std::make_shared<FakePrivateDataService>();
  session = std::make_shared<FakeURLSession>();
  host::Registry::set<KTVRPrivateDataService>(service);
  host::Registry::set<URLSession>(session);
  host::Registry::set<KTVREnvironment>(std::make_shared<TableEnvironment>(
      std::map<std::string, Json, std::less<>>{{"create-order-purchase", kCheckoutUrl},
                                               {"create-contract", kContractUrl}}));
  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>("guest-kuid-1", kSignedInEmail));
  host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<FakeUserProfileAuthentication>(kProfileEmail));
}

void CheckoutFixture::TearDown() {
  resetOverriddenHeadersForTesting();
  HostFixture::TearDown();
}

}  // namespace varnel::testing
