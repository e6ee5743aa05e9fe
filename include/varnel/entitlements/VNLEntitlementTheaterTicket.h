#pragma once
// A theater ticket. Only ever made from JSON: toVNLEntitlement never produces one.

#include <memory>

#include "varnel/entitlements/VNLEntitlement.h"

namespace varnel {

class VNLEntitlementTheaterTicket : public VNLEntitlement {
 public:
  /// init(): the base defaults; productType theaterTicket.
  VNLEntitlementTheaterTicket() = default;

  /// init(jsonData:), from a dictionary of string to any (anything else gives
  /// the defaults). Keys, each read only when of the right kind:
  ///   "totalPrice", "pricePerMonth" (numbers) -> totalPrice, pricePerMonth
  ///   "currency" (string)                     -> currency
  ///   "monthlyPaymentEligible" (bool)         -> monthlyPaymentEligible
  static std::shared_ptr<VNLEntitlementTheaterTicket> initWithJsonData(const Json& jsonData);

  Type productType() const { return productType_; }
  void setProductType(Type value) { productType_ = value; }

  /// The base JSON plus productType (raw value).
  Json toJson() const override;

 private:
  Type productType_ = Type::theaterTicket;
};

}  // namespace varnel
