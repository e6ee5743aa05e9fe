#pragma once
// Host fakes plus fresh business-requirement tables for each test, and a way
// to give the test a remote configuration.

#include <memory>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel::testing {

class RequirementsFixture : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    VNLBusinessRequirementUtil::resetToInitialValues();
  }
  void TearDown() override {
    VNLBusinessRequirementUtil::resetToInitialValues();
    HostFixture::TearDown();
  }

  static void setRemote(Json values) {
    host::Registry::set<KTVRRemoteConfiguration>(
        std::make_shared<standalone::JsonRemoteConfiguration>(std::move(values)));
  }

  static void setLocal(bool evas, bool commerce) {
    auto local = VNLBusinessRequirementUtil::localValues();
    local["com.orvane.EvasEnabled"] = evas;
    local["com.orvane.enableAnnualPassportCommerce"] = commerce;
    VNLBusinessRequirementUtil::setLocalValues(std::move(local));
  }

  KTVCParkResortContext context;
};

}  // namespace varnel::testing
