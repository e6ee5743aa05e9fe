#pragma once
// The host's entitlements manager: the guest's identity, a persisted store of
// entitlements, and fresh downloads reported through listeners.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/platform/Error.h"

namespace varnel {

/// The manager's filter for a download (beginUpdateEntitlementsOfFilterType).
enum class ENTMEntitlementFilterType : int { annualPasses = 8 };
/// The manager's type of persisted entitlements (persistedEntitlementsOfType).
enum class ENTMEntitlementType : int { annualPasses = 7 };
/// Which download a failure belongs to.
enum class ENTMEntitlementNameType : int { entitlements = 0, affiliations = 1 };

struct ENTMAvatar {
  std::optional<std::string> avatarId;
};

struct ENTMUserProfile {
  std::optional<ENTMAvatar> avatar;
};

/// Receives the answer to a download. The manager calls these on a thread of
/// its own choosing.
class ENTMEntitlementsListener {
 public:
  virtual ~ENTMEntitlementsListener() = default;
  virtual void entitlementsUpdated(const ENTMAnyList& entitlements, const std::optional<Json>& userInfo) = 0;
  virtual void entitlementsManagerUpdatedAffiliations(const std::optional<std::vector<ENTMAffiliation>>& affiliations,
                                                      const std::optional<Json>& userInfo) = 0;
  virtual void entitlementsManagerFetchFailed(ENTMEntitlementNameType nameType, const std::optional<Error>& error,
                                              const std::optional<Json>& userInfo) = 0;
};

class ENTMEntitlementsManager {
 public:
  virtual ~ENTMEntitlementsManager() = default;

  /// The manager registered with the host registry, or none.
  static std::shared_ptr<ENTMEntitlementsManager> sharedInstance();

  virtual void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext> context) = 0;
  /// The signed-in guest's account identifier; none when nobody is signed in.
  virtual std::optional<std::string> kuid() const = 0;
  virtual std::optional<ENTMUserProfile> userProfile() const = 0;

  /// Listeners are held weakly; registering one twice keeps one registration.
  virtual void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener> listener) = 0;
  virtual void removeEntitlementListener(const ENTMEntitlementsListener* listener) = 0;

  /// Starts a download; the answer reaches the registered listeners later.
  virtual void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType filter,
                                                   const std::optional<Json>& userInfo) = 0;
  virtual void retrieveAffiliationsFromUserInfo(const std::optional<Json>& userInfo) = 0;

  /// The persisted store, without any download; none when the manager has nothing.
  virtual std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType type) const = 0;
};

}  // namespace varnel
