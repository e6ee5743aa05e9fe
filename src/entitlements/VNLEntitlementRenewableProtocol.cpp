#include "varnel/entitlements/protocols/VNLEntitlementRenewableProtocol.h"

#include <algorithm>

#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlement.h"

namespace varnel {
namespace {

// The manager entitlements whose default renewal is being converted on this
// thread, so that a renewal chain that leads back to one of them ends there.
thread_local std::vector<const ENTMEntitlement*> renewalsInProgress;

class RenewalInProgress {
 public:
  explicit RenewalInProgress(const ENTMEntitlement& entitlement) { renewalsInProgress.push_back(&entitlement); }
  ~RenewalInProgress() { renewalsInProgress.pop_back(); }
  RenewalInProgress(const RenewalInProgress&) = delete;
  RenewalInProgress& operator=(const RenewalInProgress&) = delete;

  static bool contains(const ENTMEntitlement& entitlement) {
    return std::find(renewalsInProgress.begin(), renewalsInProgress.end(), &entitlement) != renewalsInProgress.end();
  }
};

}  // namespace

void VNLEntitlementRenewableProtocol::populateRenewable(const ENTMEntitlement& from) {
  if (!from.defaultRenewableProductId || !from.apRenewalOptions) return;
  const auto options = asEntitlementList(*from.apRenewalOptions);
  if (!options) return;
  const auto match = std::find_if(options->begin(), options->end(), [&](const ENTMEntitlementRef& option) {
    return option->productInstanceId == from.defaultRenewableProductId;
  });
  if (match == options->end() || RenewalInProgress::contains(**match)) return;
  RenewalInProgress inProgress(from);
  setRenewableEntitlement(toVNLEntitlement(**match));
}

void VNLEntitlementRenewableProtocol::writeRenewableFields(Json& json) const {
  const auto& renewal = renewableEntitlement();
  json["renewableEntitlement"] = renewal ? renewal->toJson() : Json(nullptr);
}

}  // namespace varnel
