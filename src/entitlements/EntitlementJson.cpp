#include "EntitlementJson.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementKeys.h"
#include "varnel/platform/DefaultsValue.h"

namespace varnel::entitlementjson {

Json number(float value) {
  if (!std::isfinite(value)) return nullptr;
  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
  double widened = value;
  std::from_chars(buffer, written.ptr, widened);
  return widened;
}

Json date(Date value) {
  // The four-digit years of RFC 3339: 0001-01-01T00:00:00Z to 9999-12-31T23:59:59Z.
  constexpr double kFirst = -62135596800.0, kEnd = 253402300800.0;
  const double seconds = value.timeIntervalSince1970;
  if (!std::isfinite(seconds) || seconds < kFirst || seconds >= kEnd) return nullptr;
  return rfc3339(value);
}

std::optional<float> floatMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  if (!member || !member->is_number()) return std::nullopt;
  const double value = member->get<double>();
  if (std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max()) {
    return value < 0 ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity();
  }
  return static_cast<float>(value);
}

std::optional<bool> boolMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  if (!member || !member->is_boolean()) return std::nullopt;
  return member->get<bool>();
}

}  // namespace varnel::entitlementjson

namespace varnel {

void populateBasePriceFields(VNLEntitlement& entitlement, const Json& jsonData) {
  if (auto v = entitlementjson::floatMember(jsonData, VNLEntitlementTotalPriceKey)) entitlement.setTotalPrice(*v);
  if (auto v = entitlementjson::floatMember(jsonData, VNLEntitlementPricePerMonthKey)) entitlement.setPricePerMonth(*v);
  if (auto* v = jsonString(jsonData, VNLEntitlementCurrencyKey)) entitlement.setCurrency(*v);
  if (auto v = entitlementjson::boolMember(jsonData, VNLEntitlementMonthlyPaymentEligibleKey)) {
    entitlement.setMonthlyPaymentEligible(*v);
  }
}

}  // namespace varnel
