#pragma once
// Turns the create-order answer into a RenewalOrder. Parsing never fails and
// never throws: a missing or mistyped part of the answer gives empty text, an
// absent value or an empty list (and, for the terms and conditions, a debug
// line). The steps are public so that other answers that repeat the order
// (the express checkout) can reuse them.
//
//   RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(answer);

#include <optional>
#include <span>
#include <vector>

#include "varnel/platform/Json.h"
#include "varnel/purchase/RenewableGuest.h"
#include "varnel/purchase/RenewableProduct.h"
#include "varnel/purchase/RenewalOrder.h"
#include "varnel/purchase/RenewalPricing.h"
#include "varnel/purchase/VNLRenewalTermsAndConditionsPolicy.h"

namespace varnel {

class VNLParseCreateOrderResponse {
 public:
  /// The whole order. Its paymentPlan is always true; callers that need the
  /// kind of plan read the pricing amounts.
  RenewalOrder parseCreateOrder(const Json& result) const;

  /// "pricing" (subtotal, tax, gratuity, total, currency, taxIncluded) and the
  /// remaining-balance amounts at the top level of the answer (totalDepositDue,
  /// monthlyPaymentAmount, downPaymentAmount). Only strings are taken as amounts.
  RenewalPricing priceAndRemainingBalance(const Json& result) const;

  /// One product per entry of the "orderItems" page, whatever its page size.
  /// An entry without a readable pass name repeats the name of the entry
  /// before it (empty for the first).
  std::vector<RenewableProduct> orderItems(const Json& orders) const;

  /// One guest per element of `guests`; the guest's pass name is that of the
  /// first product listing the guest's participant identifier, and isMe tells
  /// whether the guest is the one signed in with the host's authentication
  /// service.
  std::vector<RenewableGuest> passHolder(std::span<const Json> guests,
                                         const std::vector<RenewableProduct>& orders) const;

  /// The policies of a "termsAndConditions" object; unreadable policies are
  /// logged and left out.
  std::vector<VNLRenewalTermsAndConditionsPolicy> termsAndConditionsPolicies(const Json& termsAndConditions) const;

  /// The texts of one policy; none (not an empty list) when the policy has no
  /// "descriptions" array of objects. Unreadable texts are logged and left out.
  std::optional<std::vector<VNLRenewalPolicyDescription>> descriptionsFromPolicy(const Json& policy) const;
};

}  // namespace varnel
