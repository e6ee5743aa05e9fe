#pragma once
// Capability: the days left on a multi-day ticket.

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

class VNLEntitlementMultiDayProtocol {
 public:
  virtual ~VNLEntitlementMultiDayProtocol() = default;

  virtual std::int64_t multiDayPassesRemaining() const = 0;
  virtual void setMultiDayPassesRemaining(std::int64_t value) = 0;

  /// From daysRemaining read as its integer value (toward zero, clamped to the
  /// 64-bit range, NaN as 0); set only when daysRemaining is present.
  void populateMultiDayFields(const ENTMEntitlement& from);
  void writeMultiDayFields(Json& json) const;
};

}  // namespace varnel
