#include "varnel/checkout/CheckoutChecks.h"

namespace varnel {
namespace {

bool hasNumber(const std::optional<KTVRAddress::Phone>& phone) {
  return phone && phone->number && !phone->number->empty();
}

}  // namespace

bool CheckoutChecks::needsSecurityCode(const CreditCard& card) { return card.isScanned(); }

bool CheckoutChecks::hasPhoneNumber(const PaymentAccount& account) {
  const auto& address = account.cardHolderAddress();
  return address && (hasNumber(address->mobilePhone) || hasNumber(address->phoneNumber));
}

std::optional<APError> CheckoutChecks::firstFailure(const CheckoutChoices& choices) {
  if (!choices.paymentAccount) {
    return choices.termsAccepted ? APError::MissingPaymentMethod : APError::MissingCCAndTermsAndConditions;
  }
  const CreditCard& card = choices.paymentAccount->creditCard();
  const bool securityCodeMissing = !card.hasSecurityCode();
  if (needsSecurityCode(card) && securityCodeMissing) {
    return choices.termsAccepted ? APError::MissingCVV : APError::MissingCVVAndTermsAndConditions;
  }
  if (!hasPhoneNumber(*choices.paymentAccount)) return APError::MissingPhoneNumber;
  const bool contractMissing = choices.monthlyPlan && !choices.contractSigned;
  if (!choices.termsAccepted) return contractMissing ? APError::NoElectronicSignatureTandC : APError::NoTermsAndConditions;
  if (contractMissing) return APError::ContractNotSigned;
  return std::nullopt;
}

}  // namespace varnel
