#include "varnel/entitlements/VNLEntitlementErrors.h"

namespace varnel {

Error toError(VNLEntitlementErrors error) {
  return Error{kVNLEntitlementErrorsDomain, static_cast<long>(error), nullptr};
}

}  // namespace varnel
