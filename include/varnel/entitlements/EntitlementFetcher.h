#pragma once
// EntitlementFetcher: asks the entitlements manager for a fresh download of
// the guest's annual passes or affiliations, listens for the answer, converts
// it into the module's entitlements and tells its delegate.
//
// Each request is one-shot: the fetcher registers itself with the manager as
// a listener (weakly, through weak_from_this()) when it asks, and unregisters
// on whichever callback answers first. The callbacks, and so the delegate's
// calls, arrive on the thread the manager answers on. The delegate is held
// weakly and loaded strongly for the length of each call; a released delegate
// is never called. The fetcher's own properties may be read from any thread.

#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/platform/Error.h"

namespace varnel {

class EntitlementFetcher;

/// What a fetcher reports. Called on the thread the manager answers on.
class EntitlementFetcherDelegate {
 public:
  virtual ~EntitlementFetcherDelegate() = default;
  /// The fetcher's `entitlements` changed.
  virtual void didRetrieveEntitlements(EntitlementFetcher& sender) = 0;
  /// The fetcher's `affiliations` changed. Does nothing unless overridden.
  virtual void didRetrieveAffiliations(EntitlementFetcher& sender);
  /// A fetch failed. The error is absent only when the manager reported a
  /// failure without one.
  virtual void didFailToRetrieve(const std::optional<Error>& error, EntitlementFetcher& sender) = 0;
};

class EntitlementFetcher : public ENTMEntitlementsListener, public std::enable_shared_from_this<EntitlementFetcher> {
  struct Token {
    explicit Token() = default;
  };

 public:
  using Entitlements = std::vector<std::shared_ptr<VNLEntitlement>>;

  /// init(): nothing configured.
  static std::shared_ptr<EntitlementFetcher> create();
  /// init(context:): configures the manager's shared instance, when there is
  /// one, with `context`.
  static std::shared_ptr<EntitlementFetcher> create(std::shared_ptr<KTVCParkResortContext> context);

  explicit EntitlementFetcher(Token) {}

  // --- Properties ---

  /// Held weakly; none by default.
  std::shared_ptr<EntitlementFetcherDelegate> delegate() const;
  void setDelegate(std::weak_ptr<EntitlementFetcherDelegate> delegate);

  /// The last converted entitlements; absent until an answer arrives.
  std::optional<Entitlements> entitlements() const;
  /// Assigns and then tells the delegate (didRetrieveEntitlements).
  void setEntitlements(std::optional<Entitlements> entitlements);

  /// The last affiliations; absent until an answer arrives.
  std::optional<std::vector<ENTMAffiliation>> affiliations() const;
  /// Assigns and then tells the delegate (didRetrieveAffiliations).
  void setAffiliations(std::optional<std::vector<ENTMAffiliation>> affiliations);

  // --- Requests ---

  /// With `causeKnownFetchResponse`, requests nothing and hands that very
  /// error to the delegate. Otherwise, without a manager or a signed-in guest
  /// (kuid), logs "Attempt to fetch w/o KUID available" and reports
  /// VNLEntitlementErrors::noKUIDAvailable; with both, registers as a listener
  /// and starts a download of annual passes.
  void fetchAnnualPassRenewals(std::optional<Error> causeKnownFetchResponse = std::nullopt);
  /// Registers as a listener and asks the manager for the guest's affiliations.
  void fetchAffiliations();
  /// An intentional empty hook: nothing is fetched or reported.
  void fetchBlockoutDates(std::string_view identifier);
  /// Forgets the entitlements without notifying through the property, then
  /// tells the delegate (didRetrieveEntitlements). Affiliations stay.
  void flushData();

  // --- ENTMEntitlementsListener ---

  /// Unregisters; a list holding anything but entitlements is logged and
  /// dropped (nothing stored, nobody told); otherwise each is converted with
  /// toVNLEntitlement, in order, and stored.
  void entitlementsUpdated(const ENTMAnyList& entitlementsArray, const std::optional<Json>& userInfo) override;
  /// Unregisters and stores the list (possibly absent).
  void entitlementsManagerUpdatedAffiliations(const std::optional<std::vector<ENTMAffiliation>>& affiliationsArray,
                                              const std::optional<Json>& userInfo) override;
  /// Unregisters and reports the error to the delegate, as the APError that
  /// APEvasError makes of it when it makes one, else as given.
  void entitlementsManagerFetchFailed(ENTMEntitlementNameType nameType, const std::optional<Error>& error,
                                      const std::optional<Json>& userInfo) override;

 private:
  void unregister();

  mutable std::mutex mutex_;
  std::weak_ptr<EntitlementFetcherDelegate> delegate_;
  std::optional<Entitlements> entitlements_;
  std::optional<std::vector<ENTMAffiliation>> affiliations_;
};

}  // namespace varnel
