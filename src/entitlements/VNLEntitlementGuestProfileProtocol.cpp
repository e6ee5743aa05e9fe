#include "varnel/entitlements/protocols/VNLEntitlementGuestProfileProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementGuestProfileProtocol::populateGuestProfileFields(const ENTMEntitlement& from) {
  copyIfPresent(from.guestType, [this](const std::string& v) { setGuestType(v); });
  copyIfPresent(from.guestIdentifierArray, [this](const std::vector<std::string>& v) { setGuestIdentifierArray(v); });
  copyIfPresent(from.optionTypeAndValueArray, [this](const Json& v) { setOptionTypeAndValueArray(v); });
  copyIfPresent(from.ageGroup, [this](const std::string& v) { setAgeGroup(v); });
  copyIfPresent(from.avatarURL, [this](const std::string& v) { setAvatarURL(v); });
  copyIfPresent(from.avatarId, [this](const std::string& v) { setAvatarId(v); });
}

void VNLEntitlementGuestProfileProtocol::writeGuestProfileFields(Json& json) const {
  using entitlementjson::optional;
  json["guestType"] = optional(guestType());
  json["guestIdentifierArray"] = optional(guestIdentifierArray());
  json["optionTypeAndValueArray"] = optional(optionTypeAndValueArray());
  json["ageGroup"] = ageGroup();
  json["avatarURL"] = optional(avatarURL());
  json["avatarId"] = avatarId();
}

}  // namespace varnel
