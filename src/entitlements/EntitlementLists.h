#pragma once
// The manager's untyped lists read in place as lists of entitlements. A list
// counts as one exactly when asEntitlementList would give it (every element a
// non-null entitlement; an empty list is one), but nothing is copied.

#include <algorithm>
#include <variant>

#include "varnel/host/ENTMEntitlement.h"

namespace varnel {

inline bool holdsOnlyEntitlements(const ENTMAnyList& list) {
  return std::ranges::all_of(list, [](const ENTMAnyObject& element) {
    const auto* entitlement = std::get_if<ENTMEntitlementRef>(&element);
    return entitlement && *entitlement;
  });
}

/// The entitlement of an element of a list that holdsOnlyEntitlements.
inline const ENTMEntitlement& entitlementIn(const ENTMAnyObject& element) {
  return **std::get_if<ENTMEntitlementRef>(&element);
}

}  // namespace varnel
