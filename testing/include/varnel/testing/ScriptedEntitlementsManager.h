#pragma once
// An entitlements manager whose answers the test writes: it records what it is
// asked (downloads with their filter and user information, affiliation
// requests), holds its listeners weakly like a real manager, and answers only
// when the test calls answer(), on the test's thread.
//
//   auto manager = std::make_shared<varnel::testing::ScriptedEntitlementsManager>();
//   varnel::host::Registry::set<varnel::ENTMEntitlementsManager>(manager);
//   fetcher->fetchAnnualPassRenewals();
//   manager->answer([&](auto& listener) { listener.entitlementsUpdated(list, std::nullopt); });

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "varnel/host/ENTMEntitlementsManager.h"

namespace varnel::testing {

class ScriptedEntitlementsManager final : public ENTMEntitlementsManager {
 public:
  void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext>) override {}
  std::optional<std::string> kuid() const override { return signedInKuid; }
  std::optional<ENTMUserProfile> userProfile() const override { return profile; }
  void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener> listener) override {
    removeEntitlementListener(listener.lock().get());
    listeners.push_back(std::move(listener));
  }
  void removeEntitlementListener(const ENTMEntitlementsListener* listener) override {
    std::erase_if(listeners, [listener](const auto& entry) { return entry.lock().get() == listener; });
  }
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType filter, const std::optional<Json>& info) override {
    requests.push_back({filter, info});
  }
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>&) override { ++affiliationRequests; }
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType) const override { return persisted; }

  /// Answers every registered listener, as after a download.
  void answer(const std::function<void(ENTMEntitlementsListener&)>& call) {
    for (const auto& entry : std::vector(listeners)) {
      if (auto listener = entry.lock()) call(*listener);
    }
  }

  std::optional<std::string> signedInKuid = "guest-kuid";
  std::optional<ENTMUserProfile> profile;
  std::optional<ENTMAnyList> persisted;
  std::vector<std::weak_ptr<ENTMEntitlementsListener>> listeners;
  int affiliationRequests = 0;
  std::vector<std::pair<ENTMEntitlementFilterType, std::optional<Json>>> requests;
};

}  // namespace varnel::testing
