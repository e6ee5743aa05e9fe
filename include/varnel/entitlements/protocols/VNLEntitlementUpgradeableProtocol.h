#pragma once
// Capability: the annual passes a ticket can be upgraded to.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

class VNLEntitlementAnnualPass;

/// Annual passes by the identifying string of the affiliation they are offered to.
using VNLAnnualPassUpgradeOptions = std::map<std::string, std::vector<std::shared_ptr<VNLEntitlementAnnualPass>>>;

class VNLEntitlementUpgradeableProtocol {
 public:
  virtual ~VNLEntitlementUpgradeableProtocol() = default;

  virtual const VNLAnnualPassUpgradeOptions& annualPassesUpgradeOptions() const = 0;
  virtual void setAnnualPassesUpgradeOptions(VNLAnnualPassUpgradeOptions value) = 0;

  /// When the manager has apUpgradeOptions: for each affiliation of
  /// affiliationInfo, in order, that has options there, the options made into
  /// annual passes with VNLEntitlement::initWith (not converted by category).
  /// The dictionary is replaced; without apUpgradeOptions it is left as it was.
  /// Not part of initWith's protocol sequence: the park ticket calls it.
  void populateUpgradeable(const ENTMEntitlement& from);
  /// "annualPassesUpgradeOptions": an object of arrays of the passes' JSON.
  void writeUpgradeableFields(Json& json) const;
};

}  // namespace varnel
