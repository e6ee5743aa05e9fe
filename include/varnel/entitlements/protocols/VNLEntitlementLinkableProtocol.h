#pragma once
// Capability: the owner an entitlement is linked to.

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

class VNLEntitlementLinkableProtocol {
 public:
  virtual ~VNLEntitlementLinkableProtocol() = default;

  virtual const std::optional<std::string>& ownerName() const = 0;
  virtual void setOwnerName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerFirstName() const = 0;
  virtual void setOwnerFirstName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerLastName() const = 0;
  virtual void setOwnerLastName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerMiddleName() const = 0;
  virtual void setOwnerMiddleName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerNickName() const = 0;
  virtual void setOwnerNickName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerKUID() const = 0;
  virtual void setOwnerKUID(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerXID() const = 0;
  virtual void setOwnerXID(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& ownerGUID() const = 0;
  virtual void setOwnerGUID(std::optional<std::string> value) = 0;

  /// From holderName, firstName, lastName, middleName, nickname, ownerKuid,
  /// ownerXid and ownerGuid; each only when present.
  void populateLinkableFields(const ENTMEntitlement& from);
  void writeLinkableFields(Json& json) const;
};

}  // namespace varnel
