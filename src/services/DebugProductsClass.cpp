#include "varnel/services/DebugProductsClass.h"

#include "varnel/services/VNLEVASParse.h"

namespace varnel {

std::vector<Json> DebugProductsClass::createProductsArray() {
  std::vector<Json> products;
  const std::optional<ENTMAnyList> parsed = VNLEVASParse::parseEvasJson(kMockResourceName);
  if (!parsed) return products;
  const auto entitlements = asEntitlementList(*parsed);
  if (!entitlements) return products;
  for (const ENTMEntitlementRef& entitlement : *entitlements) {
    if (!entitlement || !entitlement->productInstanceId || !entitlement->barcodeString || !entitlement->ownerKuid) {
      continue;
    }
    products.push_back(Json{{"id", *entitlement->productInstanceId},
                            {"contextId", "progenstr"},
                            {"categoryId", "AnnualPassRenewal"},
                            {"quantity", 1},
                            {"entitlementId", *entitlement->barcodeString},
                            {"guestIdType", "kuid"},
                            {"guestId", *entitlement->ownerKuid},
                            {"avatarImage", entitlement->avatarURL.value_or("")}});
  }
  return products;
}

}  // namespace varnel
