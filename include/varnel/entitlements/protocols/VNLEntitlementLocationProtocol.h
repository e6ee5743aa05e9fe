#pragma once
// Capability: the postal address of the guest a product belongs to.

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

class VNLEntitlementLocationProtocol {
 public:
  virtual ~VNLEntitlementLocationProtocol() = default;

  virtual const std::string& address() const = 0;
  virtual void setAddress(std::string value) = 0;
  virtual const std::string& stateProvince() const = 0;
  virtual void setStateProvince(std::string value) = 0;
  virtual const std::string& postalCode() const = 0;
  virtual void setPostalCode(std::string value) = 0;
  virtual const std::string& country() const = 0;
  virtual void setCountry(std::string value) = 0;
  virtual const std::string& city() const = 0;
  virtual void setCity(std::string value) = 0;

  /// address, stateProvince from state, postalCode, country, city; each only when present.
  void populateLocationFields(const ENTMEntitlement& from);
  /// From a JSON address: "addressLine1", "stateProvince", "country",
  /// "postalCode", "city", in that order; a value that is missing or not a
  /// string leaves its field as it was.
  void populateLocation(const Json& from);
  void writeLocationFields(Json& json) const;
};

}  // namespace varnel
