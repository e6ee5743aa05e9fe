#pragma once
// JSON helpers shared by the entitlement classes: writing fields for toJson,
// and reading typed members of the dictionaries passes and tickets are made from.

#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel::entitlementjson {

/// A 32-bit float as the number it prints as (0.1f is 0.1, not 0.10000000149).
Json number(float value);
/// RFC 3339 text; null for a date too far out to write.
Json date(Date value);

template <typename T>
Json optional(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

/// The member under `key` when `object` is an object holding a number there.
std::optional<float> floatMember(const Json& object, std::string_view key);
/// The member under `key` when `object` is an object holding a boolean there.
std::optional<bool> boolMember(const Json& object, std::string_view key);

}  // namespace varnel::entitlementjson

namespace varnel {

class VNLEntitlement;

/// A ticket's base price fields from its JSON: "totalPrice", "pricePerMonth"
/// (numbers), "currency" (string), "monthlyPaymentEligible" (boolean); a
/// missing or mistyped value leaves its field as it was.
void populateBasePriceFields(VNLEntitlement& entitlement, const Json& jsonData);

}  // namespace varnel
