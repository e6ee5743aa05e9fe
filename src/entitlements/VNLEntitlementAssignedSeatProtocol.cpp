#include "varnel/entitlements/protocols/VNLEntitlementAssignedSeatProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementAssignedSeatProtocol::populateAssignedSeatFields(const ENTMEntitlement& from) {
  copyIfPresent(from.seatName, [this](const std::string& v) { setSeatName(v); });
  copyIfPresent(from.rowName, [this](const std::string& v) { setSeatRowName(v); });
  copyIfPresent(from.sectionName, [this](const std::string& v) { setSeatSectionName(v); });
}

void VNLEntitlementAssignedSeatProtocol::writeAssignedSeatFields(Json& json) const {
  json["seatName"] = entitlementjson::optional(seatName());
  json["seatRowName"] = entitlementjson::optional(seatRowName());
  json["seatSectionName"] = entitlementjson::optional(seatSectionName());
}

}  // namespace varnel
