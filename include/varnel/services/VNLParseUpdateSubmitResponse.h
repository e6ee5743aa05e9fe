#pragma once
// Turns the express-checkout answer (the order again, with its payment and
// confirmation number) into a RenewalConfirmation. Never fails and never
// throws: each missing or mistyped part is logged and left empty. Callers tell
// success from the record, for example from an empty confirmation number.

#include "varnel/platform/Json.h"
#include "varnel/purchase/RenewalConfirmation.h"
#include "varnel/purchase/RenewalPayment.h"

namespace varnel {

class VNLParseUpdateSubmitResponse {
 public:
  /// The confirmation; its paymentPlan is always true.
  RenewalConfirmation parse(const Json& result) const;

  /// One element of "payments": the card's type, sub type and masked number,
  /// and the amount charged.
  RenewalPayment payment(const Json& payment) const;
};

}  // namespace varnel
