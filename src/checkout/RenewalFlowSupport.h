#pragma once
// Helpers of the renewal road that need no state.

#include <optional>
#include <string>
#include <vector>

#include "varnel/checkout/RenewalFlow.h"
#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel::checkout_detail {

/// The renewal state of an annual pass; none for other entitlements.
std::optional<RenewableState> renewableStateOf(const VNLEntitlement& entitlement);
/// An annual pass that can be renewed now.
bool renewableNow(const VNLEntitlement& entitlement);

/// The create-order product that renews `pass`: its holder (else the
/// signed-in guest) as the guest.
Json renewalProduct(const VNLEntitlement& pass, const std::string& signedInGuest);

/// The stored card with this retrieval reference number; null when none.
const PaymentAccount* findCard(const std::vector<PaymentAccount>& accounts, const std::string& reference);

/// The express-checkout body with the card's security code.
Json withSecurityCodeOf(Json body, const std::string& securityCode);

}  // namespace varnel::checkout_detail
