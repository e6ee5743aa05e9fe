#include <map>

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/settings/VNLCommerceSettings.h"

namespace varnel {
namespace {

using Key = VNLCommerceSettings::UserDefaultKey;

constexpr const char* kUseEVAS = "com.ENTM.useEVASSwitch";
constexpr const char* kHideBringPassAlert = "com.ENTK.HideBringPassAlert";
constexpr const char* kShowColoredAnnualPass = "com.ENTK.ShowColoredAnnualPass";

struct Preset {
  VNLConfiguration configuration;
  bool useEVAS, hideBringPassAlert, showColoredAnnualPass;
  VNLConfiguration readsBackAs;
};

const Preset kPresets[] = {
    {VNLConfiguration::legacy, false, false, false, VNLConfiguration::legacy},
    {VNLConfiguration::rideslot, true, true, true, VNLConfiguration::rideslot},
    {VNLConfiguration::apRenewals, true, false, false, VNLConfiguration::apRenewals},
    {VNLConfiguration::zlt_4_5, false, true, false, VNLConfiguration::zlt_4_5},
    {VNLConfiguration::oqs_4_5, false, true, true, VNLConfiguration::oqs_4_5},
    {VNLConfiguration::zlt_4_6, true, false, false, VNLConfiguration::apRenewals},
    {VNLConfiguration::oqs_4_6, true, false, false, VNLConfiguration::apRenewals},
};

class CommerceSettingsTest : public testing::HostFixture {};

TEST_F(CommerceSettingsTest, EachPresetWritesItsThreeBooleansThenSynchronisesOnce) {
  for (const auto& preset : kPresets) {
    SCOPED_TRACE(std::string(rawValue(preset.configuration)));
    defaults = std::make_shared<testing::InMemoryUserDefaults>();
    host::Registry::set<UserDefaults>(defaults);

    VNLCommerceSettings::setDefaultsFor(preset.configuration);
    const std::map<std::string, DefaultsValue, std::less<>> expected = {
        {kUseEVAS, DefaultsValue(preset.useEVAS)},
        {kHideBringPassAlert, DefaultsValue(preset.hideBringPassAlert)},
        {kShowColoredAnnualPass, DefaultsValue(preset.showColoredAnnualPass)},
    };
    EXPECT_EQ(defaults->dictionaryRepresentation(), expected);
    EXPECT_EQ(defaults->writeCount, 3);
    EXPECT_EQ(defaults->synchronizeCount, 1);
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), preset.readsBackAs);
  }
}

TEST_F(CommerceSettingsTest, UnknownWritesNothingAndDoesNotSynchronise) {
  defaults->setBool(kUseEVAS, true);
  defaults->setInteger(Key::apRenewNumberSegment, 2);
  const auto before = defaults->dictionaryRepresentation();
  defaults->writeCount = 0;

  VNLCommerceSettings::setDefaultsFor(VNLConfiguration::unknown);
  EXPECT_EQ(defaults->dictionaryRepresentation(), before);
  EXPECT_EQ(defaults->writeCount, 0);
  EXPECT_EQ(defaults->synchronizeCount, 0);
}

TEST_F(CommerceSettingsTest, NothingStoredMeansNoSettingsAndUnknown) {
  defaults->setBool("com.other.module.flag", true);
  EXPECT_TRUE(VNLCommerceSettings::current().empty());
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::unknown);
}

TEST_F(CommerceSettingsTest, CurrentReadsEveryOwnKeyThatIsStoredAndNoOther) {
  const std::map<std::string, DefaultsValue> stored = {
      {"com.ENTM.useMockDataSwitch", DefaultsValue(true)},
      {"com.ENTM.useEVASMockSwitch", DefaultsValue(false)},
      {"com.ENTK.selectedSegmentAP", DefaultsValue(3)},
      {"com.ENTK.DataFromENTKSwitch", DefaultsValue("yes")},
      {"com.ENTK.MockHightTrustTimeoutEnabled", DefaultsValue(true)},
      {"com.ENTK.ShowColoredAnnualPass", DefaultsValue(DefaultsArray{DefaultsValue()})},
  };
  for (const auto& [key, value] : stored) defaults->setObject(key, value);
  defaults->setBool("com.ENTK.MockHighTrustTimeoutEnabled", true);  // not one of ours

  VNLUserDefaultSettings expected;
  for (const auto& [key, value] : stored) expected.emplace(key, value);
  EXPECT_EQ(VNLCommerceSettings::current(), expected);
}

TEST_F(CommerceSettingsTest, PresetsAreRecognisedOnlyFromBooleans) {
  const std::vector<std::array<DefaultsValue, 3>> lookalikes = {
      {DefaultsValue(1), DefaultsValue(0), DefaultsValue(0)},
      {DefaultsValue(true), DefaultsValue(0), DefaultsValue(false)},
      {DefaultsValue("true"), DefaultsValue("false"), DefaultsValue("false")},
      {DefaultsValue(1.0), DefaultsValue(1.0), DefaultsValue(1.0)},
  };
  for (const auto& values : lookalikes) {
    defaults->setObject(kUseEVAS, values[0]);
    defaults->setObject(kHideBringPassAlert, values[1]);
    defaults->setObject(kShowColoredAnnualPass, values[2]);
    EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::unknown);
  }
}

TEST_F(CommerceSettingsTest, OtherKeysDoNotChangeTheRecognisedPresetButAMissingOneDoes) {
  VNLCommerceSettings::setDefaultsFor(VNLConfiguration::oqs_4_5);
  defaults->setBool(Key::mockData, true);
  defaults->setBool(Key::mockEVAS, true);
  defaults->setInteger(Key::apRenewNumberSegment, 1);
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::oqs_4_5);

  defaults->removeObjectForKey(kShowColoredAnnualPass);
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::unknown);
}

TEST_F(CommerceSettingsTest, WithoutAStoreNothingHappens) {
  host::Registry::set<UserDefaults>(nullptr);
  VNLCommerceSettings::setDefaultsFor(VNLConfiguration::rideslot);
  EXPECT_TRUE(VNLCommerceSettings::current().empty());
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::unknown);
  EXPECT_EQ(defaults->writeCount, 0);
}

TEST(VNLConfiguration, RawValuesRoundTripAndAreCaseSensitive) {
  for (auto configuration : kAllVNLConfigurations) {
    EXPECT_EQ(configurationFromRawValue(rawValue(configuration)), configuration);
  }
  EXPECT_EQ(rawValue(VNLConfiguration::apRenewals), "APRenewals");
  EXPECT_EQ(configurationFromRawValue("Legacy"), VNLConfiguration::legacy);
  for (const char* text : {"legacy", "rideslot", "aprenewals", "ZLT_4_5", "unknown", "Legacy ", ""}) {
    EXPECT_EQ(configurationFromRawValue(text), std::nullopt) << text;
  }
  EXPECT_EQ(rawValue(static_cast<VNLConfiguration>(99)), "Unknown");
}

}  // namespace
}  // namespace varnel
