#pragma once
// The prices of a renewal order. Amounts are the service's text, never numbers;
// an amount the service did not send is absent.

#include <optional>
#include <string>

#include "varnel/platform/Json.h"

namespace varnel {

struct RenewalPricing {
  std::optional<std::string> subtotal;
  std::optional<std::string> gratuity;
  std::optional<std::string> total;
  /// Currency code of every amount.
  std::string currency;
  /// The amounts include tax.
  bool taxIncluded = false;
  std::optional<std::string> taxAmount;
  /// The instalment under a monthly payment plan.
  std::optional<std::string> monthlyPaymentAmount;
  /// The amount due now under a monthly payment plan.
  std::optional<std::string> downPaymentAmount;
  std::optional<std::string> depositDue;

  /// One labelled line per field; an absent amount prints as empty text.
  std::string debugDescription() const;
  /// The fields by name; absent amounts are null.
  Json toJson() const;

  friend bool operator==(const RenewalPricing&, const RenewalPricing&) = default;
};

}  // namespace varnel
