#pragma once
// Capability: the product a pass renews into by default.

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

class VNLEntitlement;

class VNLEntitlementRenewableProtocol {
 public:
  virtual ~VNLEntitlementRenewableProtocol() = default;

  virtual const std::shared_ptr<VNLEntitlement>& renewableEntitlement() const = 0;
  virtual void setRenewableEntitlement(std::shared_ptr<VNLEntitlement> value) = 0;

  /// When defaultRenewableProductId is present: the first of the manager's
  /// apRenewalOptions (when it is a list of entitlements) whose
  /// productInstanceId equals it, fully converted with toVNLEntitlement.
  /// Otherwise, or when no option matches, nothing changes. In a renewal chain
  /// that leads back to an entitlement whose renewal is being converted, that
  /// entitlement's renewal is left unset (the chain ends instead of looping).
  void populateRenewable(const ENTMEntitlement& from);
  /// "renewableEntitlement": the renewal's own JSON, or null.
  void writeRenewableFields(Json& json) const;
};

}  // namespace varnel
