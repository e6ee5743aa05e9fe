#pragma once
// Capability: the seat assigned to a ticket.

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

class VNLEntitlementAssignedSeatProtocol {
 public:
  virtual ~VNLEntitlementAssignedSeatProtocol() = default;

  virtual const std::optional<std::string>& seatName() const = 0;
  virtual void setSeatName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& seatRowName() const = 0;
  virtual void setSeatRowName(std::optional<std::string> value) = 0;
  virtual const std::optional<std::string>& seatSectionName() const = 0;
  virtual void setSeatSectionName(std::optional<std::string> value) = 0;

  /// From seatName, rowName and sectionName; each only when present.
  void populateAssignedSeatFields(const ENTMEntitlement& from);
  void writeAssignedSeatFields(Json& json) const;
};

}  // namespace varnel
