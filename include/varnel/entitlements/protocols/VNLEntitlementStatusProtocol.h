#pragma once
// Capability: the status of an entitlement.

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

class VNLEntitlementStatusProtocol {
 public:
  virtual ~VNLEntitlementStatusProtocol() = default;

  virtual const std::optional<std::string>& status() const = 0;
  virtual void setStatus(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& exchangeStatus() const = 0;
  virtual void setExchangeStatus(std::optional<std::string> value) = 0;
  virtual bool isShared() const = 0;
  virtual void setIsShared(bool value) = 0;

  /// status, exchangeStatus (when present) and isShared, from the same names.
  void populateStatusFields(const ENTMEntitlement& from);
  void writeStatusFields(Json& json) const;
};

}  // namespace varnel
