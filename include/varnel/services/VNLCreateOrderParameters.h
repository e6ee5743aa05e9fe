#pragma once
// What the host gives to start a renewal purchase: the guest's account, the
// products to renew and the payment choice. It decides which resort's store
// takes the order and becomes the body of the create-order request
// (createOrderRequest).
//
// Tester switches read from the user-defaults store when the record is made:
//   "VarnelEntitlementMockKey"         the products come from the canned
//                                      entitlement data (DebugProductsClass)
//   ENTMDebugSettings::contextKey      the resorts' short store codes ("zlt",
//                                      "oqs") instead of the mobile stores

#include <string>
#include <utility>
#include <vector>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/platform/Json.h"

namespace varnel {

struct VNLCreateOrderParameters {
  /// One product entry: "categoryId" ("AnnualPassRenewal"), "quantity",
  /// "entitlementId", "guestIdType" ("kuid") and "guestId".
  using Product = Json;

  /// The products default to none, the payment to payment in full.
  VNLCreateOrderParameters(const KTVCParkResortContext& parkResort, std::string accountId,
                           std::vector<Product> productsArray = {}, bool monthlyPlan = false);
  VNLCreateOrderParameters(const KTVCParkResortContext& parkResort, std::string accountId, bool monthlyPlan)
      : VNLCreateOrderParameters(parkResort, std::move(accountId), {}, monthlyPlan) {}

  /// The guest's account identifier, as passed.
  std::string kuid;
  std::vector<Product> products;
  /// "80008297" for the west resort, "80007798" for the east.
  std::string destinationId;
  /// "zlt_mobile" / "oqs_mobile", or "zlt" / "oqs" under the debug context setting.
  std::string storeId;
  /// A monthly payment plan rather than payment in full.
  bool paymentPlan = false;

  /// The request body: exactly "kuid", "products", "destinationId", "storeId"
  /// and "paymentPlan".
  Json parameterDictionary() const;
};

}  // namespace varnel
