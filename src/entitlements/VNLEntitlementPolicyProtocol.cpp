#include "varnel/entitlements/protocols/VNLEntitlementPolicyProtocol.h"

#include "CopyIfPresent.h"

namespace varnel {

void VNLEntitlementPolicyProtocol::populatePolicyFields(const ENTMEntitlement& from) {
  copyIfPresent(from.policyTitle, [this](const std::string& v) { setPolicyTitle(v); });
  copyIfPresent(from.policyArray, [this](const Json& v) { setPolicyArray(v); });
  copyIfPresent(from.policyLink, [this](const std::string& v) { setPolicyLink(v); });
  copyIfPresent(from.calculatedPolicyText, [this](const std::string& v) { setPolicyText(v); });
}

void VNLEntitlementPolicyProtocol::writePolicyFields(Json& json) const {
  json["policyTitle"] = policyTitle();
  json["policyArray"] = policyArray();
  json["policyLink"] = policyLink();
  json["policyText"] = policyText();
}

}  // namespace varnel
