#include "varnel/entitlements/ToVNLEntitlement.h"

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
    KTVCPrintUtility::debugPrint("categoryID: " + *entitlement.categoryId + " not recognized",
                                 LogSite{kLogFile, kLogFunction, 40});
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

  const auto options = entitlement.apRenewalOptions ? asEntitlementList(*entitlement.apRenewalOptions) : std::nullopt;
  if (options) {
    // Every renewal option is an annual pass, whatever its own category, and
    // its own options are not expanded.
    std::vector<std::shared_ptr<VNLEntitlement>> renewalOptions;
    renewalOptions.reserve(options->size());
    for (const ENTMEntitlementRef& option : *options) {
      renewalOptions.push_back(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(*option));
    }
    result->setApRenewalOptions(std::move(renewalOptions));
    KTVCPrintUtility::debugPrint("Varnel entitlement instance with id " + result->productInstanceID() + " has " +
                                     std::to_string(options->size()) + " nested renewal options",
                                 LogSite{kLogFile, kLogFunction, 53});
  }
  return result;
}

}  // namespace varnel
