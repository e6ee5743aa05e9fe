// The renewal road's small pieces: names, the booked-confirmation rule, cards.

#include "RenewalFlowSupport.h"

#include <array>

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel {

std::string_view renewalStepName(RenewalStep step) {
  static constexpr std::array<std::string_view, 7> kNames{"passes",   "cards",    "order",       "checks",
                                                          "contract", "checkout", "confirmation"};
  return kNames[static_cast<std::size_t>(step)];
}

std::string_view renewalOutcomeName(RenewalOutcome::Kind kind) {
  switch (kind) {
    case RenewalOutcome::Kind::confirmed:
      return "confirmed";
    case RenewalOutcome::Kind::refused:
      return "refused";
    case RenewalOutcome::Kind::unknown:
      return "unknown";
  }
  return "unknown";
}

bool isBookedConfirmation(const RenewalConfirmation& confirmation) {
  return !confirmation.confirmationNumber().empty() && confirmation.status() == kBookedOrderStatus;
}

PaymentAccount withSecurityCode(const PaymentAccount& account, const std::string& securityCode) {
  const CreditCard& card = account.creditCard();
  return PaymentAccount(account.guestDetails(),
                        CreditCard(card.isActive(), card.chargingPrivileges(), card.cardNumber(), card.expirationDate(),
                                   card.expirationMonth(), card.expirationYear(), card.paymentMethod(),
                                   card.paymentMethodType(), card.retrievalReferenceNumber(),
                                   card.retrievalReferenceKey(), securityCode, card.isScanned()),
                        account.cardHolderAddress());
}

std::string maskedCardNumber(const std::string& number) {
  if (number.size() <= 4) return std::string(number.size(), '*');
  return "**** " + number.substr(number.size() - 4);
}

namespace checkout_detail {

std::optional<RenewableState> renewableStateOf(const VNLEntitlement& entitlement) {
  const auto* pass = dynamic_cast<const VNLEntitlementAnnualPass*>(&entitlement);
  if (!pass) return std::nullopt;
  return RenewableState(*pass);
}

bool renewableNow(const VNLEntitlement& entitlement) {
  const auto state = renewableStateOf(entitlement);
  return state && *state == RenewableState::eligibleNow && entitlement.entitlementRenewable();
}

Json renewalProduct(const VNLEntitlement& pass, const std::string& signedInGuest) {
  const std::string holder = !pass.profileId().empty() ? pass.profileId() : signedInGuest;
  return Json{{"categoryId", "AnnualPassRenewal"},
              {"quantity", 1},
              {"entitlementId", pass.productInstanceID()},
              {"guestIdType", "kuid"},
              {"guestId", holder}};
}

const PaymentAccount* findCard(const std::vector<PaymentAccount>& accounts, const std::string& reference) {
  for (const auto& account : accounts) {
    if (account.creditCard().retrievalReferenceNumber() == reference) return &account;
  }
  return nullptr;
}

Json withSecurityCodeOf(Json body, const std::string& securityCode) {
  auto payments = body.find("payments");
  if (payments == body.end() || !payments->is_array()) return body;
  for (auto& payment : *payments) {
    auto reference = payment.find("paymentReference");
    if (reference != payment.end() && reference->is_object()) (*reference)["cvv2"] = securityCode;
  }
  return body;
}

}  // namespace checkout_detail
}  // namespace varnel
