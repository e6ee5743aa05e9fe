#pragma once
// Capability: the profile of the guest an entitlement is assigned to.

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

/// avatarId is the base entitlement's own storage, and ageGroup is one storage
/// with the age group protocol's, in every class that adopts this protocol.
class VNLEntitlementGuestProfileProtocol {
 public:
  virtual ~VNLEntitlementGuestProfileProtocol() = default;

  virtual const std::optional<std::string>& guestType() const = 0;
  virtual void setGuestType(std::optional<std::string> value) = 0;
  virtual const std::optional<std::vector<std::string>>& guestIdentifierArray() const = 0;
  virtual void setGuestIdentifierArray(std::optional<std::vector<std::string>> value) = 0;
  virtual const std::optional<Json>& optionTypeAndValueArray() const = 0;
  virtual void setOptionTypeAndValueArray(std::optional<Json> value) = 0;
  virtual const std::string& ageGroup() const = 0;
  virtual void setAgeGroup(std::string value) = 0;
  /// The URL text, or none.
  virtual const std::optional<std::string>& avatarURL() const = 0;
  virtual void setAvatarURL(std::optional<std::string> value) = 0;
  virtual const std::string& avatarId() const = 0;
  virtual void setAvatarId(std::string value) = 0;

  /// Each from the property of the same name, when present.
  void populateGuestProfileFields(const ENTMEntitlement& from);
  void writeGuestProfileFields(Json& json) const;
};

}  // namespace varnel
