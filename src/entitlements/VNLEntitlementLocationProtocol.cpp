#include "varnel/entitlements/protocols/VNLEntitlementLocationProtocol.h"

#include "CopyIfPresent.h"
#include "varnel/entitlements/VNLEntitlementKeys.h"

namespace varnel {

void VNLEntitlementLocationProtocol::populateLocationFields(const ENTMEntitlement& from) {
  copyIfPresent(from.address, [this](const std::string& v) { setAddress(v); });
  copyIfPresent(from.state, [this](const std::string& v) { setStateProvince(v); });
  copyIfPresent(from.postalCode, [this](const std::string& v) { setPostalCode(v); });
  copyIfPresent(from.country, [this](const std::string& v) { setCountry(v); });
  copyIfPresent(from.city, [this](const std::string& v) { setCity(v); });
}

void VNLEntitlementLocationProtocol::populateLocation(const Json& from) {
  if (const auto* v = jsonString(from, VNLEntitlementAddressLineKey)) setAddress(*v);
  if (const auto* v = jsonString(from, VNLEntitlementStateProvinceKey)) setStateProvince(*v);
  if (const auto* v = jsonString(from, VNLEntitlementCountryKey)) setCountry(*v);
  if (const auto* v = jsonString(from, VNLEntitlementPostalCodeKey)) setPostalCode(*v);
  if (const auto* v = jsonString(from, VNLEntitlementCityKey)) setCity(*v);
}

void VNLEntitlementLocationProtocol::writeLocationFields(Json& json) const {
  json["address"] = address();
  json["stateProvince"] = stateProvince();
  json["postalCode"] = postalCode();
  json["country"] = country();
  json["city"] = city();
}

}  // namespace varnel
