#pragma once
// A renewal sent for real over the shared loopback fixture, with the steps a
// host takes before the checkout: an order parsed as the host reads it, and a
// stored card with the security code the guest entered.

#include <memory>
#include <string>

#include "checkout/CheckoutTestSupport.h"
#include "support/CommerceOverHttp.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParsePaymentAccounts.h"

namespace varnel::testing {

inline constexpr const char* kRenewablePass = kSamplePass;

class RenewalOverHttpTest : public CommerceOverHttpTest {
 protected:
  void SetUp() override {
    CommerceOverHttpTest::SetUp();
    host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(household.email));
  }

  /// Serves the household afresh: nothing charged, no faults.
  void restart() { start(household, household.kuid); }

  /// A renewal order of kRenewablePass, its plan set by the caller as a host does.
  RenewalOrder placeOrder(bool monthlyPlan) {
    const Outcome answer = createOrder(monthlyPlan);
    EXPECT_TRUE(answer.onlySucceeded() && answer.value) << "the mock refused the order";
    if (!answer.value) return {};
    RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(*answer.value);
    order.paymentPlan = monthlyPlan;
    return order;
  }

  /// The stored card with this reference, with `securityCode` entered.
  PaymentAccount storedCard(const std::string& reference, const std::string& securityCode = "") {
    const Outcome answer = accounts();
    EXPECT_TRUE(answer.onlySucceeded());
    for (const PaymentAccount& account : VNLParsePaymentAccounts().parsePaymentAccounts(answer.value.value_or(Json()))) {
      const CreditCard& card = account.creditCard();
      if (card.retrievalReferenceNumber() != reference) continue;
      return PaymentAccount(account.guestDetails(),
                            CreditCard(card.isActive(), card.chargingPrivileges(), card.cardNumber(),
                                       card.expirationDate(), card.expirationMonth(), card.expirationYear(),
                                       card.paymentMethod(), card.paymentMethodType(), card.retrievalReferenceNumber(),
                                       card.retrievalReferenceKey(), securityCode, card.isScanned()),
                            account.cardHolderAddress());
    }
    ADD_FAILURE() << "no stored card " << reference;
    return testAccount();
  }
};

}  // namespace varnel::testing
