#pragma once
// Capability: the age group a ticket was sold for.

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

/// ageGroup is one storage with the guest profile protocol's ageGroup.
class VNLEntitlementAgeGroupProtocol {
 public:
  virtual ~VNLEntitlementAgeGroupProtocol() = default;

  virtual const std::string& ageGroup() const = 0;
  virtual void setAgeGroup(std::string value) = 0;

  /// ageGroup, when present.
  void populateAssignedAgeGroupField(const ENTMEntitlement& from);
  void writeAgeGroupFields(Json& json) const;
};

}  // namespace varnel
