#pragma once
// Failures of the entitlement model itself.

#include "varnel/platform/Error.h"

namespace varnel {

enum class VNLEntitlementErrors : int {
  /// An entitlement fetch was attempted while the entitlements manager has no
  /// guest account identifier (nobody is signed in).
  noKUIDAvailable = 0,
};

/// The domain of the platform errors made from VNLEntitlementErrors.
inline constexpr const char* kVNLEntitlementErrorsDomain = "Varnel.VNLEntitlementErrors";

/// As a platform error: domain "Varnel.VNLEntitlementErrors", code = the case's
/// raw value, no user information.
Error toError(VNLEntitlementErrors error);

}  // namespace varnel
