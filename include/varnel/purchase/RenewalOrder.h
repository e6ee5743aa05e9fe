#pragma once
// The order that the commerce service creates for a renewal.

#include <string>
#include <vector>

#include "varnel/platform/Json.h"
#include "varnel/purchase/RenewableGuest.h"
#include "varnel/purchase/RenewableProduct.h"
#include "varnel/purchase/RenewalPricing.h"
#include "varnel/purchase/VNLRenewalTermsAndConditionsPolicy.h"

namespace varnel {

struct RenewalOrder {
  std::vector<RenewableProduct> products;
  std::vector<RenewableGuest> guests;
  RenewalPricing pricing;
  /// True when paid by a monthly payment plan, false when paid in full.
  bool paymentPlan = false;
  /// The service's identifier of the order; the contract request and the
  /// express checkout name the order by it.
  std::string orderId;
  std::string bookingTermsAndConditions;
  std::vector<VNLRenewalTermsAndConditionsPolicy> termsAndConditionsPolicies;

  /// The first product, the first guest, the pricing and the booking terms.
  /// Only orders holding at least one product and one guest can be described:
  /// describing any other order stops the program with a message on stderr.
  std::string debugDescription() const;
  /// The fields by name, nested records as objects.
  Json toJson() const;

  friend bool operator==(const RenewalOrder&, const RenewalOrder&) = default;
};

}  // namespace varnel
