#pragma once
// Steps of a renewal that several commands take: finding the pass the guest
// names, the product entry that renews it, and the create-order request.

#include <memory>
#include <string>
#include <vector>

#include "Command.h"
#include "commands/CommerceSession.h"
#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel::cli {

/// The renewal state of an annual pass; none for other entitlements.
std::optional<RenewableState> renewableState(const VNLEntitlement& entitlement);

/// The guest's entitlement with this product instance ID; a UsageError that
/// lists the guest's passes when there is none.
std::shared_ptr<VNLEntitlement> findPass(const VNLVarnel& varnel, const std::string& productInstanceId);

/// The usage error for a pass the guest does not have, listing `guestPasses`.
UsageError noSuchPass(const std::string& productInstanceId, const std::vector<std::string>& guestPasses);

/// The product entry that renews `pass`: category "AnnualPassRenewal",
/// quantity 1, the pass as the entitlement, its holder (else the signed-in
/// guest) as the guest.
Json renewalProduct(const VNLEntitlement& pass, const CommerceSession& session);

/// createOrderRequest for the signed-in guest at the session's park.
CallbackOutcome sendCreateOrder(CommerceSession& session, std::vector<Json> products, bool monthlyPlan);

}  // namespace varnel::cli
