#pragma once
// An entitlements manager for fetcher and facade tests: it records what it is
// asked, keeps its listeners weakly like the real one, and answers only when
// the test tells it to, on the test's thread.

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlementsManager.h"

namespace varnel::testing {

class ScriptedEntitlementsManager final : public ENTMEntitlementsManager {
 public:
  void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext> context) override {
    configuredContext = std::move(context);
  }
  std::optional<std::string> kuid() const override { return signedInKuid; }
  std::optional<ENTMUserProfile> userProfile() const override { return std::nullopt; }

  void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener> listener) override {
    ++registerCount;
    auto candidate = listener.lock();
    for (const auto& entry : listeners) {
      if (entry.lock() == candidate) return;
    }
    listeners.push_back(std::move(listener));
  }
  void removeEntitlementListener(const ENTMEntitlementsListener* listener) override {
    ++removeCount;
    std::erase_if(listeners, [listener](const auto& entry) { return entry.lock().get() == listener; });
  }
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType filter, const std::optional<Json>& userInfo) override {
    requestedFilters.push_back(filter);
    requestUserInfo = userInfo;
  }
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>&) override { ++affiliationRequests; }
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType type) const override {
    requestedTypes.push_back(type);
    return persisted;
  }

  /// Listeners registered now and still alive.
  std::vector<std::shared_ptr<ENTMEntitlementsListener>> liveListeners() const {
    std::vector<std::shared_ptr<ENTMEntitlementsListener>> alive;
    for (const auto& entry : listeners) {
      if (auto listener = entry.lock()) alive.push_back(std::move(listener));
    }
    return alive;
  }

  // Answers to every registered listener, as the manager would after a download.
  void answerEntitlements(const ENTMAnyList& list) {
    for (const auto& listener : liveListeners()) listener->entitlementsUpdated(list, std::nullopt);
  }
  void answerAffiliations(const std::optional<std::vector<ENTMAffiliation>>& list) {
    for (const auto& listener : liveListeners()) listener->entitlementsManagerUpdatedAffiliations(list, std::nullopt);
  }
  void answerFailure(const std::optional<Error>& error) {
    for (const auto& listener : liveListeners()) {
      listener->entitlementsManagerFetchFailed(ENTMEntitlementNameType::entitlements, error, std::nullopt);
    }
  }

  std::optional<std::string> signedInKuid = "guest-kuid";
  std::optional<ENTMAnyList> persisted;
  std::shared_ptr<KTVCParkResortContext> configuredContext;

  std::vector<std::weak_ptr<ENTMEntitlementsListener>> listeners;
  int registerCount = 0;
  int removeCount = 0;
  int affiliationRequests = 0;
  std::vector<ENTMEntitlementFilterType> requestedFilters;
  std::optional<Json> requestUserInfo;
  mutable std::vector<ENTMEntitlementType> requestedTypes;
};

}  // namespace varnel::testing
