#include "varnel/entitlements/protocols/VNLEntitlementTypeProtocol.h"

#include "varnel/host/ENTMEntitlementsManager.h"

namespace varnel {
namespace {

// The avatar of the signed-in guest's profile when the entitlement is theirs.
std::string avatarIdFor(const ENTMEntitlement& entitlement) {
  const auto manager = ENTMEntitlementsManager::sharedInstance();
  const std::optional<std::string> kuid = manager ? manager->kuid() : std::nullopt;
  if (entitlement.profileId == kuid) {
    const auto profile = manager ? manager->userProfile() : std::nullopt;
    if (profile && profile->avatar && profile->avatar->avatarId) return *profile->avatar->avatarId;
    return "";
  }
  return entitlement.avatarId.value_or("");
}

}  // namespace

void VNLEntitlementTypeProtocol::populateTypeFields(const ENTMEntitlement& from) {
  setProductTypeID(from.productType.value_or(""));
  setIsRenewable(from.isRenewable);
  setAvatarId(avatarIdFor(from));
}

void VNLEntitlementTypeProtocol::writeTypeFields(Json& json) const {
  json["productTypeID"] = productTypeID();
  json["isRenewable"] = isRenewable();
  json["avatarId"] = avatarId();
}

}  // namespace varnel
