#include "varnel/host/ENTMEntitlementsManager.h"

#include "varnel/host/Registry.h"

namespace varnel {

std::shared_ptr<ENTMEntitlementsManager> ENTMEntitlementsManager::sharedInstance() {
  return host::Registry::get<ENTMEntitlementsManager>();
}

std::optional<std::vector<ENTMEntitlementRef>> asEntitlementList(const ENTMAnyList& list) {
  std::vector<ENTMEntitlementRef> entitlements;
  entitlements.reserve(list.size());
  for (const auto& element : list) {
    const auto* entitlement = std::get_if<ENTMEntitlementRef>(&element);
    if (!entitlement || !*entitlement) return std::nullopt;
    entitlements.push_back(*entitlement);
  }
  return entitlements;
}

std::string runtimeTypeName(const ENTMAnyList& list) {
  return asEntitlementList(list) ? "Array<ENTMEntitlement>" : "Array<Any>";
}

}  // namespace varnel
