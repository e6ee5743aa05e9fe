#include "varnel/entitlements/AnnualPassListOperations.h"

#include <algorithm>
#include <cmath>

namespace varnel {

VNLAnnualPassList sortByPrice(const VNLAnnualPassList& passes, bool ascending) {
  VNLAnnualPassList sorted = passes;
  // Entries without a comparable price (null, NaN) go last, so the order stays strict.
  auto comparable = [](const std::shared_ptr<VNLEntitlementAnnualPass>& pass) {
    return pass && !std::isnan(pass->totalPrice());
  };
  const auto unpriced = std::stable_partition(sorted.begin(), sorted.end(), comparable);
  std::sort(sorted.begin(), unpriced, [ascending](const auto& left, const auto& right) {
    return ascending ? left->totalPrice() < right->totalPrice() : left->totalPrice() > right->totalPrice();
  });
  return sorted;
}

std::int64_t VNLSunsetPassUtility::sunsetPassCountOf(const std::optional<VNLAnnualPassList>& passes) {
  if (!passes) return 0;
  return std::count_if(passes->begin(), passes->end(), [](const auto& pass) { return pass && pass->isSunsetPass(); });
}

}  // namespace varnel
