#include "varnel/requirements/VNLBusinessRequirementsStrings.h"

#include "varnel/requirements/VNLBusinessRequirementsKeys.h"

namespace varnel {

std::string VNLBusinessRequirementsStrings::enableAnnualPassportCommerceString() const {
  return std::string(VNLBusinessRequirementsKeys::enableAnnualPassportCommerceKey);
}

std::string VNLBusinessRequirementsStrings::enableAnnualPassportRenewalsString() const {
  return std::string(VNLBusinessRequirementsKeys::enableAnnualPassportRenewalsKey);
}

std::string VNLBusinessRequirementsStrings::enableAnnualPassportUpgradesString() const {
  return std::string(VNLBusinessRequirementsKeys::enableAnnualPassportUpgradesKey);
}

std::string VNLBusinessRequirementsStrings::enableAnnualPassportSalesString() const {
  return std::string(VNLBusinessRequirementsKeys::enableAnnualPassportSalesKey);
}

}  // namespace varnel
