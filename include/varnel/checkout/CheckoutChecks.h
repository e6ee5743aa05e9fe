#pragma once
// The guest's checks before a checkout, made by the caller of the purchase
// handler: nothing is sent while one of them fails.
//
//   CheckoutChoices choices{.paymentAccount = chosen, .termsAccepted = accepted, ...};
//   if (auto failed = CheckoutChecks::firstFailure(choices)) {
//     APNotificationBanner::showNotificationBanner(*failed, context);
//   } else {
//     handler->beginPurchaseTransaction(order.orderId, *chosen, order);
//   }
//
// In order: a payment method (with the terms: MissingCCAndTermsAndConditions),
// the card's security code where the card needs one (with the terms:
// MissingCVVAndTermsAndConditions), a billing phone number, then the terms and,
// on the monthly plan, the signed contract (both missing:
// NoElectronicSignatureTandC).

#include <optional>

#include "varnel/errors/APError.h"
#include "varnel/purchase/PaymentAccount.h"

namespace varnel {

struct CheckoutChoices {
  /// The card the guest chose; none when no card is chosen.
  std::optional<PaymentAccount> paymentAccount;
  /// The guest accepted the terms and conditions.
  bool termsAccepted = false;
  /// The order is on the monthly payment plan.
  bool monthlyPlan = false;
  /// The guest signed the monthly-payment contract.
  bool contractSigned = false;
};

struct CheckoutChecks {
  /// A scanned card needs its security code; a card stored in the profile is
  /// charged through its stored reference.
  static bool needsSecurityCode(const CreditCard& card);
  /// The billing address has a mobile or another phone number.
  static bool hasPhoneNumber(const PaymentAccount& account);
  /// The first check that fails, as the guest is told it; none when all pass.
  static std::optional<APError> firstFailure(const CheckoutChoices& choices);
};

}  // namespace varnel
