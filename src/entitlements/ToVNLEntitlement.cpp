#include "varnel/entitlements/ToVNLEntitlement.h"

#include "EntitlementLists.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel {
namespace {

constexpr const char* kLogFile = "Classes/ENTMEntitlement+toVNLEntitlement";
constexpr const char* kLogFunction = "toVNLEntitlement()";

std::shared_ptr<VNLEntitlement> makeForCategory(const ENTMEntitlement& entitlement) {
  if (!entitlement.categoryId) return VNLEntitlement::initWith<VNLEntitlement>(entitlement);
  const auto category = categoryIDFromRawValue(*entitlement.categoryId);
  if (!category) {
    if (KTVCPrintUtility::isEnabled()) {
      static const LogSite site{kLogFile, kLogFunction, 40};
      KTVCPrintUtility::debugPrint("categoryID: " + *entitlement.categoryId + " not recognized", site);
    }
    return VNLEntitlement::initWith<VNLEntitlement>(entitlement);
  }
  switch (*category) {
    case CategoryID::AnnualPass: return VNLEntitlement::initWith<VNLEntitlementAnnualPass>(entitlement);
    case CategoryID::ThemePark: return VNLEntitlement::initWith<VNLEntitlementParkTicket>(entitlement);
  }
  return VNLEntitlement::initWith<VNLEntitlement>(entitlement);
}

}  // namespace

std::optional<CategoryID> categoryIDFromRawValue(std::string_view rawValue) {
  if (rawValue == "AnnualPass") return CategoryID::AnnualPass;
  if (rawValue == "ThemePark") return CategoryID::ThemePark;
  return std::nullopt;
}

std::string_view rawValue(CategoryID category) {
  switch (category) {
    case CategoryID::AnnualPass: return "AnnualPass";
    case CategoryID::ThemePark: return "ThemePark";
  }
  return "";
}

std::shared_ptr<VNLEntitlement> toVNLEntitlement(const ENTMEntitlement& entitlement) {
  auto result = makeForCategory(entitlement);

  if (entitlement.apRenewalOptions && holdsOnlyEntitlements(*entitlement.apRenewalOptions)) {
    const ENTMAnyList& options = *entitlement.apRenewalOptions;
    // Every renewal option is an annual pass, whatever its own category, and
    // its own options are not expanded.
    std::vector<std::shared_ptr<VNLEntitlement>> renewalOptions;
    renewalOptions.reserve(options.size());
    for (const ENTMAnyObject& option : options) {
      renewalOptions.push_back(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(entitlementIn(option)));
    }
    result->setApRenewalOptions(std::move(renewalOptions));
    if (KTVCPrintUtility::isEnabled()) {
      static const LogSite site{kLogFile, kLogFunction, 53};
      KTVCPrintUtility::debugPrint("Varnel entitlement instance with id " + result->productInstanceID() + " has " +
                                       std::to_string(options.size()) + " nested renewal options",
                                   site);
    }
  }
  return result;
}

}  // namespace varnel
