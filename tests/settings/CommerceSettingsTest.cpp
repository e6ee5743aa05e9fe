#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/settings/VNLCommerceSettings.h"

namespace varnel {
namespace {

using Key = VNLCommerceSettings::UserDefaultKey;
using Config = VNLConfiguration;
using CommerceSettingsTest = testing::HostFixture;

TEST_F(CommerceSettingsTest, EachPresetWritesItsThreeBooleansSynchronisesOnceAndIsReadBack) {
  // Preset, the EVAS, hide-bring-pass-alert and colored-pass switches it writes, read back as.
  using enum VNLConfiguration;
  const std::tuple<Config, bool, bool, bool, Config> rows[] = {
      {legacy, false, false, false, legacy},         {rideslot, true, true, true, rideslot},
      {apRenewals, true, false, false, apRenewals},  {zlt_4_5, false, true, false, zlt_4_5},
      {oqs_4_5, false, true, true, oqs_4_5},         {zlt_4_6, true, false, false, apRenewals},
      {oqs_4_6, true, false, false, apRenewals},
  };
  for (const auto& [configuration, useEVAS, hide, colored, readBack] : rows) {
    auto store = std::make_shared<testing::InMemoryUserDefaults>();
    host::Registry::set<UserDefaults>(store);
    VNLCommerceSettings::setDefaultsFor(configuration);
    const std::map<std::string, DefaultsValue, std::less<>> written{{"com.ENTM.useEVASSwitch", useEVAS},
        {"com.ENTK.HideBringPassAlert", hide}, {"com.ENTK.ShowColoredAnnualPass", colored}};
    EXPECT_EQ(store->dictionaryRepresentation(), written);
    EXPECT_EQ(std::pair(store->writeCount, store->synchronizeCount), std::pair(3, 1));  // written, synchronised
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), readBack) << rawValue(configuration);
    // Other stored keys do not matter; a missing preset key does.
    store->setInteger(Key::apRenewNumberSegment, 1);
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), readBack);
    store->removeObjectForKey(Key::hideBringPassAlert);
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), unknown);
  }
}

TEST_F(CommerceSettingsTest, UnknownOrAMissingStoreWritesNothing) {
  VNLCommerceSettings::setDefaultsFor(Config::unknown);
  host::Registry::set<UserDefaults>(nullptr);
  VNLCommerceSettings::setDefaultsFor(Config::rideslot);
  EXPECT_EQ(defaults->writeCount + defaults->synchronizeCount, 0);
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), Config::unknown);
}

TEST_F(CommerceSettingsTest, PresetsAreRecognisedOnlyFromBooleansAndCurrentReadsOnlyOwnKeys) {
  for (const auto& values : std::vector<std::array<DefaultsValue, 3>>{{1, 0, 0}, {true, 0, false}, {1.0, 1.0, 1.0}}) {
    defaults->setObject(Key::useEVAS, values[0]);
    defaults->setObject(Key::hideBringPassAlert, values[1]);
    defaults->setObject(Key::showColorfulAnnualPass, values[2]);
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), Config::unknown);
  }
  defaults->setObject(Key::mockHightTrustTimeoutEnabled, "yes");
  defaults->setBool("com.ENTK.MockHighTrustTimeoutEnabled", true);  // not one of ours
  const VNLUserDefaultSettings expected{{"com.ENTM.useEVASSwitch", 1.0}, {"com.ENTK.HideBringPassAlert", 1.0},
      {"com.ENTK.ShowColoredAnnualPass", 1.0}, {"com.ENTK.MockHightTrustTimeoutEnabled", "yes"}};
  EXPECT_EQ(VNLCommerceSettings::current(), expected);
}

}  // namespace
}  // namespace varnel
