#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel {
namespace {

RenewableState::Value stateOf(const VNLEntitlementAnnualPass& pass) {
  if (const auto& options = pass.apRenewalOptions()) {
    // Renewal options known: renewable now when there is one and the pass is
    // renewable and not shared.
    if (!options->empty() && pass.entitlementRenewable()) {
      return pass.shared() ? RenewableState::ineligible : RenewableState::eligibleNow;
    }
    return RenewableState::ineligible;
  }
  // No options yet: a sellable pass of the guest's own that is not renewable
  // today becomes renewable later.
  const bool later = !pass.entitlementRenewable() && !pass.shared() && pass.sellable();
  return later ? RenewableState::eligibleLater : RenewableState::ineligible;
}

}  // namespace

RenewableState::RenewableState(const VNLEntitlementAnnualPass& annualPass) : value_(stateOf(annualPass)) {}

}  // namespace varnel
