#include "varnel/services/VNLCreateOrderParameters.h"

#include "CommerceRequestSupport.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/ENTMDebugSettings.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/UserDefaults.h"
#include "varnel/services/DebugProductsClass.h"

namespace varnel {
namespace {

struct Store {
  const char* destinationId;
  const char* mobileStoreId;
  const char* shortStoreId;
};

constexpr Store kWestStore{"80008297", "zlt_mobile", "zlt"};
constexpr Store kEastStore{"80007798", "oqs_mobile", "oqs"};

}  // namespace

VNLCreateOrderParameters::VNLCreateOrderParameters(const KTVCParkResortContext& parkResort, std::string accountId,
                                                   std::vector<Product> productsArray, bool monthlyPlan)
    : kuid(std::move(accountId)), paymentPlan(monthlyPlan) {
  const bool entitlementsMocked = services_detail::switchIsOn(VNLVarnel::Constants::varnelEntitlementMockKey);
  const bool debugContext = services_detail::switchIsOn(ENTMDebugSettings::contextKey);

  // The west value as a newly made context supplies it.
  const KTVCResortChoice west = KTVCParkResortContext(kResortChoiceWest).resortChoice();
  const Store& store = parkResort.resortChoice() == west ? kWestStore : kEastStore;
  destinationId = store.destinationId;
  storeId = debugContext ? store.shortStoreId : store.mobileStoreId;
  products = entitlementsMocked ? DebugProductsClass::createProductsArray() : std::move(productsArray);
}

Json VNLCreateOrderParameters::parameterDictionary() const {
  return Json{{"kuid", kuid},
              {"products", Json(products)},
              {"destinationId", destinationId},
              {"storeId", storeId},
              {"paymentPlan", paymentPlan}};
}

}  // namespace varnel
