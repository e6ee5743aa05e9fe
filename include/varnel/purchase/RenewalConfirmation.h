#pragma once
// The result of a successful express checkout. Read-only once made.

#include <string>
#include <vector>

#include "varnel/platform/Json.h"
#include "varnel/purchase/RenewableGuest.h"
#include "varnel/purchase/RenewableProduct.h"
#include "varnel/purchase/RenewalPayment.h"
#include "varnel/purchase/RenewalPricing.h"

namespace varnel {

class RenewalConfirmation {
 public:
  struct Fields {
    std::vector<RenewableProduct> products;
    std::vector<RenewableGuest> guests;
    RenewalPricing pricing;
    RenewalPayment payment;
    bool paymentPlan = false;
    /// The number to show the guest.
    std::string confirmationNumber;
    /// The order status the service reports.
    std::string status;

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  RenewalConfirmation() = default;
  explicit RenewalConfirmation(Fields fields) : fields_(std::move(fields)) {}

  const std::vector<RenewableProduct>& products() const { return fields_.products; }
  const std::vector<RenewableGuest>& guests() const { return fields_.guests; }
  const RenewalPricing& pricing() const { return fields_.pricing; }
  const RenewalPayment& payment() const { return fields_.payment; }
  bool paymentPlan() const { return fields_.paymentPlan; }
  const std::string& confirmationNumber() const { return fields_.confirmationNumber; }
  const std::string& status() const { return fields_.status; }

  /// The fields by name, nested records as objects.
  Json toJson() const;

  friend bool operator==(const RenewalConfirmation&, const RenewalConfirmation&) = default;

 private:
  Fields fields_;
};

}  // namespace varnel
