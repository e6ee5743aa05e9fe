#include <gtest/gtest.h>

#include "RequirementsFixture.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"
#include "varnel/requirements/VNLBusinessRequirementsStrings.h"

namespace varnel {
namespace {

using Util = VNLBusinessRequirementUtil;
using Keys = VNLBusinessRequirementsKeys;

class BusinessRequirementUtilTest : public testing::RequirementsFixture {};

TEST_F(BusinessRequirementUtilTest, AFreshProcessStartsWithEvasOnAndCommerceOff) {
  const VNLBusinessRequirementValues expected = {
      {"com.orvane.EvasEnabled", true},
      {"com.orvane.enableAnnualPassportCommerce", false},
      {"com.orvane.enableAnnualPassportRenewals", false},
      {"com.orvane.enableAnnualPassportUpgrades", false},
      {"com.orvane.enableAnnualPassportSales", false},
  };
  EXPECT_EQ(Util::localValues(), expected);
  EXPECT_TRUE(Util::remoteValues().empty());
  EXPECT_FALSE(Util::ignoreAPCommerceRemoteValues());

  const VNLBusinessRequirementsStrings strings;
  for (const auto& key : {strings.enableAnnualPassportCommerceString(), strings.enableAnnualPassportRenewalsString(),
                          strings.enableAnnualPassportUpgradesString(), strings.enableAnnualPassportSalesString()}) {
    EXPECT_TRUE(expected.contains(key)) << key;
  }
}

// One row of the precedence rule: what the remote configuration and the local
// table hold, what the caller asks for, and what the switch shows.
struct PrecedenceCase {
  const char* name;
  std::optional<Json> remote;  // none: no remote configuration at all
  bool ignoreRemote;
  std::optional<bool> local;
  bool isUsingRemote;
  bool shows;
  bool recordsRemote;
};

TEST_F(BusinessRequirementUtilTest, PrecedenceBetweenRemoteAndLocalValues) {
  const PrecedenceCase cases[] = {
      {"local beats usable remote when remote is not asked for", Json(true), false, false, false, false, false},
      {"local beats usable remote (other way round)", Json(false), false, true, false, true, false},
      {"remote asked for is taken and recorded", Json(true), false, false, true, true, true},
      {"remote false asked for is taken and recorded", Json(false), false, true, true, false, true},
      {"remote taken when nothing is local", Json(true), false, std::nullopt, false, true, true},
      {"remote taken when nothing is local, asked for", Json(false), false, std::nullopt, true, false, true},
      {"ignored remote leaves the local value", Json(false), true, true, false, true, false},
      {"ignored remote asked for shows false", Json(true), true, true, true, false, false},
      {"ignored remote and nothing local", Json(true), true, std::nullopt, false, false, false},
      {"text remote counts as none", Json("true"), false, true, false, true, false},
      {"text remote asked for shows false", Json("true"), false, true, true, false, false},
      {"numeric remote counts as none", Json(1), false, std::nullopt, true, false, false},
      {"null remote counts as none", Json(nullptr), false, true, false, true, false},
      {"no remote configuration, local shown", std::nullopt, false, true, false, true, false},
      {"no remote configuration, asked for", std::nullopt, false, true, true, false, false},
      {"nothing anywhere", std::nullopt, false, std::nullopt, false, false, false},
      {"nothing anywhere, asked for", std::nullopt, false, std::nullopt, true, false, false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    Util::resetToInitialValues();
    host::Registry::set<KTVRRemoteConfiguration>(nullptr);
    if (row.remote) setRemote(Json{{"enableAnnualPassportRenewals", *row.remote}, {"unrelated", true}});
    Util::ignoreRemoteValuesForAPCommerce(row.ignoreRemote);
    auto local = Util::localValues();
    local.erase("com.orvane.enableAnnualPassportRenewals");
    if (row.local) local["com.orvane.enableAnnualPassportRenewals"] = *row.local;
    Util::setLocalValues(local);

    EXPECT_EQ(Util::setSwitchByBusinessRequirementKey(context, Keys::enableAnnualPassportRenewalsRemoteKey,
                                                      Keys::enableAnnualPassportRenewalsKey, row.isUsingRemote),
              row.shows);
    const VNLBusinessRequirementValues recorded = row.recordsRemote
        ? VNLBusinessRequirementValues{{"enableAnnualPassportRenewals", row.remote->get<bool>()}}
        : VNLBusinessRequirementValues{};
    EXPECT_EQ(Util::remoteValues(), recorded);
    EXPECT_EQ(Util::localValues(), local) << "settling a switch never writes the local table";
  }
}

TEST_F(BusinessRequirementUtilTest, RemoteRequirementIsTheRemoteBooleanOrFalse) {
  EXPECT_FALSE(Util::getRomoteBusinessRequirement("enableAnnualPassportSales"));
  setRemote(Json{{"enableAnnualPassportSales", true}, {"enableAnnualPassportUpgrades", "true"}, {"enableRideslot", 1}});
  Util::ignoreRemoteValuesForAPCommerce(true);  // reading the remote value directly is not affected
  EXPECT_TRUE(Util::getRomoteBusinessRequirement("enableAnnualPassportSales"));
  EXPECT_FALSE(Util::getRomoteBusinessRequirement("enableAnnualPassportUpgrades"));
  EXPECT_FALSE(Util::getRomoteBusinessRequirement("enableRideslot"));
  EXPECT_FALSE(Util::getRomoteBusinessRequirement("enableAnnualPassportCommerce"));
  EXPECT_TRUE(Util::remoteValues().empty());
}

TEST_F(BusinessRequirementUtilTest, EachSetterStoresItsOwnKeyWhateverUsingRemoteSays) {
  using Setter = void (*)(const KTVCParkResortContext&, bool, bool);
  const std::pair<Setter, const char*> setters[] = {
      {&Util::switchAPRenewals, "com.orvane.enableAnnualPassportRenewals"},
      {&Util::switchAPUpgrade, "com.orvane.enableAnnualPassportUpgrades"},
      {&Util::switchAPSales, "com.orvane.enableAnnualPassportSales"},
      {&Util::switchCommerce, "com.orvane.enableAnnualPassportCommerce"},
      {&Util::switchRideslot, "enableRideslot"},
      {&Util::turnOnEvas, "com.orvane.EvasEnabled"},
  };
  for (const auto& [setter, key] : setters) {
    for (const bool value : {true, false}) {
      SCOPED_TRACE(std::string(key) + (value ? " on" : " off"));
      Util::resetToInitialValues();
      auto expected = Util::localValues();
      expected[key] = value;
      setter(context, !value, value);
      EXPECT_EQ(Util::localValues(), expected);
    }
  }
  EXPECT_TRUE(Util::remoteValues().empty());
}

}  // namespace
}  // namespace varnel
