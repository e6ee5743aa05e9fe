#include "varnel/entitlements/protocols/VNLEntitlementUpgradeableProtocol.h"

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {

void VNLEntitlementUpgradeableProtocol::populateUpgradeable(const ENTMEntitlement& from) {
  if (!from.apUpgradeOptions) return;
  VNLAnnualPassUpgradeOptions upgradeOptions;
  for (const ENTMAffiliation& affiliation : from.affiliationInfo.value_or(std::vector<ENTMAffiliation>{})) {
    const auto found = from.apUpgradeOptions->find(affiliation.affiliationId);
    if (found == from.apUpgradeOptions->end()) continue;
    std::vector<std::shared_ptr<VNLEntitlementAnnualPass>> passes;
    passes.reserve(found->second.size());
    for (const ENTMEntitlementRef& option : found->second) {
      if (option) passes.push_back(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(*option));
    }
    upgradeOptions[affiliation.affiliationId] = std::move(passes);
  }
  setAnnualPassesUpgradeOptions(std::move(upgradeOptions));
}

void VNLEntitlementUpgradeableProtocol::writeUpgradeableFields(Json& json) const {
  Json options = Json::object();
  for (const auto& [affiliationId, passes] : annualPassesUpgradeOptions()) {
    Json list = Json::array();
    for (const auto& pass : passes) list.push_back(pass ? pass->toJson() : Json(nullptr));
    options[affiliationId] = std::move(list);
  }
  json["annualPassesUpgradeOptions"] = std::move(options);
}

}  // namespace varnel
