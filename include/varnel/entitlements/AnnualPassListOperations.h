#pragma once
// Operations on lists of annual passes.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {

using VNLAnnualPassList = std::vector<std::shared_ptr<VNLEntitlementAnnualPass>>;

/// A copy sorted by totalPrice: lowest first when ascending, highest first
/// otherwise. Ties keep no particular order; NaN prices and null entries go last.
VNLAnnualPassList sortByPrice(const VNLAnnualPassList& passes, bool ascending);

struct VNLSunsetPassUtility {
  /// How many passes are sunset passes; an absent list counts 0.
  static std::int64_t sunsetPassCountOf(const std::optional<VNLAnnualPassList>& passes);
};

}  // namespace varnel
