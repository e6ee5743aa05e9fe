#pragma once
// An entitlements manager for fetcher and facade tests: it records what it is
// asked, holds its listeners weakly like a real one, and answers only when
// the test says so, on the test's thread.

#include <memory>
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
    removeEntitlementListener(listener.lock().get());
    listeners.push_back(std::move(listener));
  }
  void removeEntitlementListener(const ENTMEntitlementsListener* listener) override {
    std::erase_if(listeners, [listener](const auto& entry) { return entry.lock().get() == listener; });
  }
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType filter, const std::optional<Json>& userInfo) override {
    requests.push_back({filter, userInfo});
  }
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>&) override { ++affiliationRequests; }
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType type) const override {
    persistedTypes.push_back(type);
    return persisted;
  }

  std::vector<std::shared_ptr<ENTMEntitlementsListener>> liveListeners() const {
    std::vector<std::shared_ptr<ENTMEntitlementsListener>> alive;
    for (const auto& entry : listeners) {
      if (auto listener = entry.lock()) alive.push_back(std::move(listener));
    }
    return alive;
  }
  /// Answers every registered listener, as after a download.
  template <typename Call>
  void answer(Call call) {
    for (const auto& listener : liveListeners()) call(*listener);
  }

  std::optional<std::string> signedInKuid = "guest-kuid";
  std::optional<ENTMAnyList> persisted;
  std::shared_ptr<KTVCParkResortContext> configuredContext;
  std::vector<std::weak_ptr<ENTMEntitlementsListener>> listeners;
  int registerCount = 0;
  int affiliationRequests = 0;
  std::vector<std::pair<ENTMEntitlementFilterType, std::optional<Json>>> requests;
  mutable std::vector<ENTMEntitlementType> persistedTypes;
};

}  // namespace varnel::testing
