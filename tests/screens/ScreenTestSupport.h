#pragma once
// Fakes of the host's module-hosting library, a fake routing view, and the
// fixture of the screen tests: fresh host fakes, the initial
// business-requirement tables and no routing server before each test.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/Fakes.h"
#include "varnel/host/PLNTBundle.h"
#include "varnel/host/PLNTInvocation.h"
#include "varnel/host/Registry.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/screens/ServerErrorRoutingPresenter.h"
#include "varnel/testing/NetworkFakes.h"

namespace varnel::testing {

class FakeInvocation final : public PLNTInvocation {
 public:
  std::string brickName() const override { return name; }
  std::shared_ptr<KTVCParkResortContext> parkContext() const override { return context; }
  std::map<std::string, std::string> parameters() const override { return {}; }

  std::string name = "VNLConfigurationBrick";
  std::shared_ptr<KTVCParkResortContext> context;
};

/// Answers the bundles it was given, by name; counts the questions.
class FakeBundleLookup final : public PLNTBundleLookup {
 public:
  std::optional<PLNTBundle> bundleFromMainBundleOrFramework(std::string_view bundleName) const override {
    asked.emplace_back(bundleName);
    for (const auto& bundle : bundles) {
      if (bundle.name == bundleName) return bundle;
    }
    return std::nullopt;
  }
  std::vector<PLNTBundle> bundles;
  mutable std::vector<std::string> asked;
};

/// The controls of the routing screen as plain values.
class FakeRoutingView final : public ServerErrorRoutingView {
 public:
  std::string usernameText() const override { return username; }
  void setUsernameText(const std::string& text) override { username = text; }
  bool isRoutingSwitchOn() const override { return switchOn; }
  void setRoutingSwitchOn(bool isOn) override { switchOn = isOn; }
  void setResultText(const std::string& text) override { result = text; }
  void setRoutingControlsHidden(bool isHidden) override { hidden = isHidden; }

  std::string username;
  bool switchOn = false;
  std::string result;
  std::optional<bool> hidden;
};

class ScreenTest : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    VNLBusinessRequirementUtil::resetToInitialValues();
    ServerErrorRoutingPresenter::setMockServerAddress("");
  }
  void TearDown() override {
    VNLBusinessRequirementUtil::resetToInitialValues();
    HostFixture::TearDown();
  }
};

}  // namespace varnel::testing
