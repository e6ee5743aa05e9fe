#include "commands/RenewalSteps.h"

#include "Command.h"
#include "OptionChecks.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLCreateOrderParameters.h"

namespace varnel::cli {

std::optional<RenewableState> renewableState(const VNLEntitlement& entitlement) {
  const auto* pass = dynamic_cast<const VNLEntitlementAnnualPass*>(&entitlement);
  if (!pass) return std::nullopt;
  return RenewableState(*pass);
}

std::shared_ptr<VNLEntitlement> findPass(const VNLVarnel& varnel, const std::string& productInstanceId) {
  std::vector<std::string> known;
  for (const auto& entitlement : varnel.allEntitlements()) {
    if (entitlement->productInstanceID() == productInstanceId) return entitlement;
    known.push_back(entitlement->productInstanceID());
  }
  throw noSuchPass(productInstanceId, known);
}

UsageError noSuchPass(const std::string& productInstanceId, const std::vector<std::string>& guestPasses) {
  std::string known;
  for (const std::string& pass : guestPasses) known += (known.empty() ? "" : ", ") + pass;
  return UsageError("the guest has no pass " + echoed(productInstanceId) + " (the guest's passes: " +
                    (known.empty() ? "none" : known) + ")");
}

Json renewalProduct(const VNLEntitlement& pass, const CommerceSession& session) {
  const std::string holder = !pass.profileId().empty() ? pass.profileId() : session.guest().kuid.value_or("");
  return Json{{"categoryId", "AnnualPassRenewal"},
              {"quantity", 1},
              {"entitlementId", pass.productInstanceID()},
              {"guestIdType", "kuid"},
              {"guestId", holder}};
}

CallbackOutcome sendCreateOrder(CommerceSession& session, std::vector<Json> products, bool monthlyPlan) {
  const VNLCreateOrderParameters parameters(*session.parkContext(), session.guest().kuid.value_or(""),
                                            std::move(products), monthlyPlan);
  return session.await(
      [&](auto success, auto failure) { createOrderRequest(session.service(), parameters, success, failure); });
}

}  // namespace varnel::cli
