#pragma once
// The card that paid for a renewal, as the checkout answer reports it.
// Read-only once made.

#include <string>

#include "varnel/platform/Json.h"

namespace varnel {

class RenewalPayment {
 public:
  struct Fields {
    std::string cardType;
    std::string cardSubType;
    /// The amount charged.
    std::string amount;
    /// The card number as the service masks it.
    std::string maskedCardNumber;

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  RenewalPayment() = default;
  explicit RenewalPayment(Fields fields) : fields_(std::move(fields)) {}

  const std::string& cardType() const { return fields_.cardType; }
  const std::string& cardSubType() const { return fields_.cardSubType; }
  const std::string& amount() const { return fields_.amount; }
  const std::string& maskedCardNumber() const { return fields_.maskedCardNumber; }

  Json toJson() const;

  friend bool operator==(const RenewalPayment&, const RenewalPayment&) = default;

 private:
  Fields fields_;
};

}  // namespace varnel
