#include "varnel/entitlements/protocols/VNLEntitlementRenewableProtocol.h"

#include <algorithm>

#include "EntitlementLists.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlement.h"

namespace varnel {
namespace {

// The manager entitlements whose default renewal is being converted on this
// thread. A renewal chain that leads back to one of them ends there: that
// entitlement is converted again without its renewal.
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
  if (!from.defaultRenewableProductId || !from.apRenewalOptions || RenewalInProgress::contains(from)) return;
  const ENTMAnyList& options = *from.apRenewalOptions;
  if (!holdsOnlyEntitlements(options)) return;
  const auto match = std::find_if(options.begin(), options.end(), [&](const ENTMAnyObject& option) {
    return entitlementIn(option).productInstanceId == from.defaultRenewableProductId;
  });
  if (match == options.end()) return;
  RenewalInProgress inProgress(from);
  setRenewableEntitlement(toVNLEntitlement(entitlementIn(*match)));
}

void VNLEntitlementRenewableProtocol::writeRenewableFields(Json& json) const {
  const auto& renewal = renewableEntitlement();
  json["renewableEntitlement"] = renewal ? renewal->toJson() : Json(nullptr);
}

}  // namespace varnel
