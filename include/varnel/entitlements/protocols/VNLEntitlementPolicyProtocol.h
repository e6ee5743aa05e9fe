#pragma once
// Capability: the terms a product is sold under.

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

class VNLEntitlementPolicyProtocol {
 public:
  virtual ~VNLEntitlementPolicyProtocol() = default;

  virtual const std::string& policyTitle() const = 0;
  virtual void setPolicyTitle(std::string value) = 0;
  /// A list, as the manager gives it.
  virtual const Json& policyArray() const = 0;
  virtual void setPolicyArray(Json value) = 0;
  virtual const std::string& policyLink() const = 0;
  virtual void setPolicyLink(std::string value) = 0;
  virtual const std::string& policyText() const = 0;
  virtual void setPolicyText(std::string value) = 0;

  /// policyTitle, policyArray, policyLink, and policyText from
  /// calculatedPolicyText; each only when present.
  void populatePolicyFields(const ENTMEntitlement& from);
  void writePolicyFields(Json& json) const;
};

}  // namespace varnel
