#include "varnel/entitlements/protocols/VNLEntitlementGovernmentIDProtocol.h"

#include <charconv>
#include <string_view>

#include "EntitlementJson.h"

namespace varnel {
namespace {

// A whole decimal number: an optional sign, then only digits, within 64 bits.
std::optional<std::int64_t> wholeDecimalNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

void VNLEntitlementGovernmentIDProtocol::populateGovernementIDFields(const ENTMEntitlement& from) {
  setIsGovIDLinked(from.govIdLinked);
  if (!from.orderConfirmationNumber) return;
  if (const auto number = wholeDecimalNumber(*from.orderConfirmationNumber)) setGovIDConfirmationNumber(number);
}

void VNLEntitlementGovernmentIDProtocol::writeGovernmentIDFields(Json& json) const {
  json["isGovIDLinked"] = isGovIDLinked();
  json["govIDConfirmationNumber"] = entitlementjson::optional(govIDConfirmationNumber());
}

}  // namespace varnel
