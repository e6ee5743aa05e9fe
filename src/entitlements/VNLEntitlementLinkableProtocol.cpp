#include "varnel/entitlements/protocols/VNLEntitlementLinkableProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementLinkableProtocol::populateLinkableFields(const ENTMEntitlement& from) {
  copyIfPresent(from.holderName, [this](const std::string& v) { setOwnerName(v); });
  copyIfPresent(from.firstName, [this](const std::string& v) { setOwnerFirstName(v); });
  copyIfPresent(from.lastName, [this](const std::string& v) { setOwnerLastName(v); });
  copyIfPresent(from.middleName, [this](const std::string& v) { setOwnerMiddleName(v); });
  copyIfPresent(from.nickname, [this](const std::string& v) { setOwnerNickName(v); });
  copyIfPresent(from.ownerKuid, [this](const std::string& v) { setOwnerKUID(v); });
  copyIfPresent(from.ownerXid, [this](const std::string& v) { setOwnerXID(v); });
  copyIfPresent(from.ownerGuid, [this](const std::string& v) { setOwnerGUID(v); });
}

void VNLEntitlementLinkableProtocol::writeLinkableFields(Json& json) const {
  using entitlementjson::optional;
  json["ownerName"] = optional(ownerName());
  json["ownerFirstName"] = optional(ownerFirstName());
  json["ownerLastName"] = optional(ownerLastName());
  json["ownerMiddleName"] = optional(ownerMiddleName());
  json["ownerNickName"] = optional(ownerNickName());
  json["ownerKUID"] = optional(ownerKUID());
  json["ownerXID"] = optional(ownerXID());
  json["ownerGUID"] = optional(ownerGUID());
}

}  // namespace varnel
