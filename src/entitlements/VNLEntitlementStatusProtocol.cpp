#include "varnel/entitlements/protocols/VNLEntitlementStatusProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementStatusProtocol::populateStatusFields(const ENTMEntitlement& from) {
  copyIfPresent(from.status, [this](const std::string& v) { setStatus(v); });
  copyIfPresent(from.exchangeStatus, [this](const std::string& v) { setExchangeStatus(v); });
  setIsShared(from.isShared);
}

void VNLEntitlementStatusProtocol::writeStatusFields(Json& json) const {
  json["status"] = entitlementjson::optional(status());
  json["exchangeStatus"] = entitlementjson::optional(exchangeStatus());
  json["isShared"] = isShared();
}

}  // namespace varnel
