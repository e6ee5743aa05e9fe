#pragma once
// Capability: whether a pass is being retired.

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

class VNLEntitlementSunsetProtocol {
 public:
  virtual ~VNLEntitlementSunsetProtocol() = default;

  virtual bool isSunsetPass() const = 0;
  virtual void setIsSunsetPass(bool value) = 0;

  /// A renewable pass without a default renewal product is a sunset pass; a
  /// pass that is not renewable never is.
  void populateSunsetFields(const ENTMEntitlement& from);
  void writeSunsetFields(Json& json) const;
};

}  // namespace varnel
