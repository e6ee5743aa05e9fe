#include "varnel/entitlements/protocols/VNLEntitlementSunsetProtocol.h"

namespace varnel {

void VNLEntitlementSunsetProtocol::populateSunsetFields(const ENTMEntitlement& from) {
  setIsSunsetPass(from.isRenewable && !from.defaultRenewableProductId);
}

void VNLEntitlementSunsetProtocol::writeSunsetFields(Json& json) const { json["isSunsetPass"] = isSunsetPass(); }

}  // namespace varnel
