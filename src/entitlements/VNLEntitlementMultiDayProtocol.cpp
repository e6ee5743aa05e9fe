#include "varnel/entitlements/protocols/VNLEntitlementMultiDayProtocol.h"

#include <cmath>
#include <limits>

namespace varnel {
namespace {

// A number object's integer value: toward zero, saturating, NaN as 0.
std::int64_t integerValue(double number) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (std::isnan(number)) return 0;
  if (number >= 9223372036854775807.0) return Limits::max();
  if (number <= -9223372036854775808.0) return Limits::min();
  return static_cast<std::int64_t>(number);
}

}  // namespace

void VNLEntitlementMultiDayProtocol::populateMultiDayFields(const ENTMEntitlement& from) {
  if (from.daysRemaining) setMultiDayPassesRemaining(integerValue(*from.daysRemaining));
}

void VNLEntitlementMultiDayProtocol::writeMultiDayFields(Json& json) const {
  json["multiDayPassesRemaining"] = multiDayPassesRemaining();
}

}  // namespace varnel
