#pragma once
// Capability: the product type, renewability and avatar of an entitlement.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

/// isRenewable and avatarId are the base entitlement's own storage in every
/// class that adopts this protocol.
class VNLEntitlementTypeProtocol {
 public:
  virtual ~VNLEntitlementTypeProtocol() = default;

  virtual const std::string& productTypeID() const = 0;
  virtual void setProductTypeID(std::string value) = 0;
  virtual bool isRenewable() const = 0;
  virtual void setIsRenewable(bool value) = 0;
  virtual const std::string& avatarId() const = 0;
  virtual void setAvatarId(std::string value) = 0;

  /// productTypeID from productType ("" when absent); isRenewable from
  /// isRenewable; avatarId from the signed-in guest's profile avatar when the
  /// entitlement's profileId equals the manager's kuid (two absent values are
  /// equal), otherwise from the entitlement's own avatarId ("" when absent).
  void populateTypeFields(const ENTMEntitlement& from);
  void writeTypeFields(Json& json) const;
};

}  // namespace varnel
