#include "varnel/entitlements/protocols/VNLEntitlementAgeGroupProtocol.h"

#include "CopyIfPresent.h"

namespace varnel {

void VNLEntitlementAgeGroupProtocol::populateAssignedAgeGroupField(const ENTMEntitlement& from) {
  copyIfPresent(from.ageGroup, [this](const std::string& v) { setAgeGroup(v); });
}

void VNLEntitlementAgeGroupProtocol::writeAgeGroupFields(Json& json) const { json["ageGroup"] = ageGroup(); }

}  // namespace varnel
