#pragma once
// Terms-and-conditions policies that the guest must accept for an order.

#include <string>
#include <vector>

#include "varnel/platform/Json.h"

namespace varnel {

/// One text of a policy.
struct VNLRenewalPolicyDescription {
  std::string id;
  std::string name;
  /// The policy text as HTML, shown as it stands.
  std::string htmlText;

  Json toJson() const;

  friend bool operator==(const VNLRenewalPolicyDescription&, const VNLRenewalPolicyDescription&) = default;
};

struct VNLRenewalTermsAndConditionsPolicy {
  std::string id;
  std::string name;
  std::vector<VNLRenewalPolicyDescription> descriptions;

  Json toJson() const;

  friend bool operator==(const VNLRenewalTermsAndConditionsPolicy&,
                         const VNLRenewalTermsAndConditionsPolicy&) = default;
};

}  // namespace varnel
