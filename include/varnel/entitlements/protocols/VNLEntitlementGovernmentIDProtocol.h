#pragma once
// Capability: the link between a ticket and a government ID.

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

class VNLEntitlementGovernmentIDProtocol {
 public:
  virtual ~VNLEntitlementGovernmentIDProtocol() = default;

  virtual bool isGovIDLinked() const = 0;
  virtual void setIsGovIDLinked(bool value) = 0;
  /// The order confirmation number as a number, or none.
  virtual const std::optional<std::int64_t>& govIDConfirmationNumber() const = 0;
  virtual void setGovIDConfirmationNumber(std::optional<std::int64_t> value) = 0;

  /// isGovIDLinked from govIdLinked as it is; govIDConfirmationNumber from
  /// orderConfirmationNumber only when that is a whole decimal number (an
  /// optional sign and digits, within 64 bits), otherwise unchanged.
  void populateGovernementIDFields(const ENTMEntitlement& from);
  void writeGovernmentIDFields(Json& json) const;
};

}  // namespace varnel
