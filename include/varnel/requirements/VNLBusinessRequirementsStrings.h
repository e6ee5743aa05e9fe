#pragma once
// The local business-requirement keys, for a host that reads the local table
// without knowing their texts.

#include <string>

namespace varnel {

class VNLBusinessRequirementsStrings {
 public:
  VNLBusinessRequirementsStrings() = default;
  std::string enableAnnualPassportCommerceString() const;
  std::string enableAnnualPassportRenewalsString() const;
  std::string enableAnnualPassportUpgradesString() const;
  std::string enableAnnualPassportSalesString() const;
};

}  // namespace varnel
