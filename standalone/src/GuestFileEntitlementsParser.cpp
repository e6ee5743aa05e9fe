#include "varnel/standalone/GuestFileEntitlementsParser.h"

#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {

std::optional<ENTMAnyList> GuestFileEntitlementsParser::parse(const Json& json) const {
  Result<std::vector<ENTMEntitlementRef>> entitlements = parseEntitlementList(json);
  if (!entitlements) return std::nullopt;
  ENTMAnyList list;
  list.reserve(entitlements.value().size());
  for (auto& entitlement : entitlements.value()) list.emplace_back(std::move(entitlement));
  return list;
}

}  // namespace varnel::standalone
