#pragma once
// Conversion of the entitlements manager's records into the module's own
// entitlements.

#include <memory>
#include <optional>
#include <string_view>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/host/ENTMEntitlement.h"

namespace varnel {

/// The categories of a manager entitlement that pick a subclass.
enum class CategoryID {
  AnnualPass,  ///< "AnnualPass" -> VNLEntitlementAnnualPass
  ThemePark,   ///< "ThemePark"  -> VNLEntitlementParkTicket
};

/// The category of an exact, case-sensitive raw value; none for any other text.
std::optional<CategoryID> categoryIDFromRawValue(std::string_view rawValue);
std::string_view rawValue(CategoryID category);

/// The module's entitlement for a manager entitlement; never null.
///   - No categoryId: a plain VNLEntitlement, nothing logged.
///   - A CategoryID: the class of that category.
///   - Another category: logged ("categoryID: <category> not recognized"), a plain VNLEntitlement.
/// Every class is filled by VNLEntitlement::initWith. When the manager's
/// apRenewalOptions is a list of entitlements, each option becomes, in order,
/// a VNLEntitlementAnnualPass made with initWith (not converted by category,
/// and its own options not expanded) in apRenewalOptions, and the count is
/// logged; a list of anything else is ignored.
std::shared_ptr<VNLEntitlement> toVNLEntitlement(const ENTMEntitlement& entitlement);

}  // namespace varnel
