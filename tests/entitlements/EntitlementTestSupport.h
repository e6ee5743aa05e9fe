#pragma once
// A fake entitlements manager (guest identity and profile only) and a fixture
// that registers it on top of the host fakes.

#include <memory>
#include <optional>
#include <string>

#include "support/Fakes.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"

namespace varnel::testing {

class FakeEntitlementsManager final : public ENTMEntitlementsManager {
 public:
  void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext>) override {}
  std::optional<std::string> kuid() const override { return signedInKuid; }
  std::optional<ENTMUserProfile> userProfile() const override { return profile; }
  void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener>) override {}
  void removeEntitlementListener(const ENTMEntitlementsListener*) override {}
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType, const std::optional<Json>&) override {}
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>&) override {}
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType) const override { return std::nullopt; }

  std::optional<std::string> signedInKuid;
  std::optional<ENTMUserProfile> profile;
};

class EntitlementFixture : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    manager = std::make_shared<FakeEntitlementsManager>();
    manager->signedInKuid = "guest-kuid";
    host::Registry::set<ENTMEntitlementsManager>(manager);
  }

  std::shared_ptr<FakeEntitlementsManager> manager;
};

/// A manager entitlement to share in option lists.
inline ENTMEntitlementRef entitlementRef(ENTMEntitlement entitlement) {
  return std::make_shared<const ENTMEntitlement>(std::move(entitlement));
}

inline ENTMEntitlement withId(std::string productInstanceId, std::optional<std::string> categoryId = std::nullopt) {
  ENTMEntitlement entitlement;
  entitlement.productInstanceId = std::move(productInstanceId);
  entitlement.categoryId = std::move(categoryId);
  return entitlement;
}

}  // namespace varnel::testing
