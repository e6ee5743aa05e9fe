#include <gtest/gtest.h>

#include <set>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/requirements/BusinessRequirementStateMachine.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel {
namespace {

using Util = VNLBusinessRequirementUtil;
using Keys = VNLBusinessRequirementsKeys;

class BusinessRequirementsTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    Util::resetToInitialValues();
  }
  static std::string text(std::optional<bool> value) { return value ? (*value ? "on" : "off") : "absent"; }
  static void setLocal(std::string_view key, std::optional<bool> value) {
    auto local = Util::localValues();
    local.erase(std::string(key));
    if (value) local.emplace(key, *value);
    Util::setLocalValues(std::move(local));
  }
  KTVCParkResortContext context;
};

TEST_F(BusinessRequirementsTest, SwitchShowsTheUsableRemoteValueOnlyWhenAskedOrNothingIsLocal) {
  // Remote value (none: no remote configuration), ignore remote, local value, remote asked for
  // -> value shown, whether the remote value was recorded.
  const std::tuple<std::optional<Json>, bool, std::optional<bool>, bool, bool, bool> rows[] = {
      {true, 0, false, 0, false, 0},  {false, 0, true, 0, true, 0},   {true, 0, false, 1, true, 1},
      {false, 0, true, 1, false, 1},  {true, 0, {}, 0, true, 1},      {false, 0, {}, 1, false, 1},
      // An ignored or non-boolean remote value counts as none: false when asked for.
      {false, 1, true, 0, true, 0},   {true, 1, true, 1, false, 0},   {true, 1, {}, 0, false, 0},
      {"true", 0, true, 0, true, 0},  {"true", 0, true, 1, false, 0}, {1, 0, {}, 1, false, 0},
      {nullptr, 0, true, 0, true, 0}, {{}, 0, true, 0, true, 0},      {{}, 0, true, 1, false, 0},
      {{}, 0, {}, 0, false, 0},
  };
  for (const auto& [remote, ignore, local, asked, shows, records] : rows) {
    SCOPED_TRACE(::testing::Message() << (remote ? remote->dump() : "no remote") << " ignored " << ignore
                                      << " local " << text(local) << " asked " << asked);
    Util::resetToInitialValues();
    host::Registry::set<KTVRRemoteConfiguration>(
        remote ? std::make_shared<standalone::JsonRemoteConfiguration>(
                     Json{{Keys::enableAnnualPassportRenewalsRemoteKey, *remote}, {"unrelated", true}})
               : nullptr);
    Util::ignoreRemoteValuesForAPCommerce(ignore);
    setLocal(Keys::enableAnnualPassportRenewalsKey, local);
    const auto localBefore = Util::localValues();
    EXPECT_EQ(Util::setSwitchByBusinessRequirementKey(context, Keys::enableAnnualPassportRenewalsRemoteKey,
                                                      Keys::enableAnnualPassportRenewalsKey, asked), shows);
    EXPECT_EQ(Util::remoteValues(), (records ? VNLBusinessRequirementValues{{"enableAnnualPassportRenewals", shows}}
                                             : VNLBusinessRequirementValues{}));
    EXPECT_EQ(Util::localValues(), localBefore) << "settling a switch never writes the local table";
  }
  // Reading a remote value directly takes only a boolean and records nothing.
  host::Registry::set<KTVRRemoteConfiguration>(std::make_shared<standalone::JsonRemoteConfiguration>(
      Json{{"enableAnnualPassportSales", true}, {"enableAnnualPassportUpgrades", "true"}}));
  EXPECT_TRUE(Util::getRomoteBusinessRequirement("enableAnnualPassportSales"));
  EXPECT_FALSE(Util::getRomoteBusinessRequirement("enableAnnualPassportUpgrades"));
  EXPECT_TRUE(Util::remoteValues().empty());
}

TEST_F(BusinessRequirementsTest, EachSetterStoresItsOwnKeyOverTheInitialTable) {
  VNLBusinessRequirementValues expected = {
      {"com.orvane.EvasEnabled", true}, {"com.orvane.enableAnnualPassportCommerce", false},
      {"com.orvane.enableAnnualPassportRenewals", false}, {"com.orvane.enableAnnualPassportUpgrades", false},
      {"com.orvane.enableAnnualPassportSales", false}};
  EXPECT_EQ(Util::localValues(), expected);
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
      expected[key] = value;
      setter(context, !value, value);  // whether the remote value is in use does not matter
      EXPECT_EQ(Util::localValues(), expected) << key;
    }
  }
}

/// A state that belongs to no commerce rule.
class ForeignState final : public GKState {};

enum Target { On, Off, EvasOff, Foreign };
const std::type_index kClasses[] = {typeid(CommerceOnState), typeid(CommerceOffState), typeid(EvasOffState),
                                    typeid(ForeignState)};

BusinessRequirementStateMachine makeMachine(bool withForeignState) {
  std::vector<std::shared_ptr<GKState>> all{std::make_shared<CommerceOnState>(), std::make_shared<CommerceOffState>(),
                                            std::make_shared<EvasOffState>()};
  if (withForeignState) all.push_back(std::make_shared<ForeignState>());
  return BusinessRequirementStateMachine(std::move(all));
}

TEST_F(BusinessRequirementsTest, EveryRowOfTheTransitionRule) {
  // From, EVAS, commerce (absent counts as off) -> the states that may follow.
  const std::tuple<Target, std::optional<bool>, std::optional<bool>, std::set<Target>> rows[] = {
      {On, true, false, {Off}},          {On, true, true, {}},           {On, false, true, {EvasOff}},
      {On, {}, {}, {EvasOff, Off}},      {Off, true, true, {On}},        {Off, true, {}, {}},
      {Off, false, true, {On, EvasOff}}, {Off, {}, false, {EvasOff}},    {EvasOff, true, true, {Off, Foreign}},
      {EvasOff, true, false, {Off, Foreign}}, {EvasOff, false, true, {}}, {EvasOff, {}, {}, {}},
  };
  for (const auto& [from, evas, commerce, allowed] : rows) {
    for (const Target target : {On, Off, EvasOff, Foreign}) {
      SCOPED_TRACE(::testing::Message() << from << "->" << target << " EVAS " << text(evas) << " C " << text(commerce));
      auto machine = makeMachine(true);
      ASSERT_TRUE(machine.enter(kClasses[from]));
      // The rule reads the table when asked, not when the state was entered.
      setLocal(Keys::enableEvasKey, evas);
      setLocal(Keys::enableAnnualPassportCommerceKey, commerce);
      EXPECT_EQ(machine.canEnterState(kClasses[target]), allowed.contains(target));
      EXPECT_EQ(machine.enter(kClasses[target]), allowed.contains(target));
      EXPECT_EQ(machine.currentState(), machine.stateForClass(kClasses[allowed.contains(target) ? target : from]));
    }
  }
}

TEST_F(BusinessRequirementsTest, AnyStateMayComeFirstButAClassForeignToTheMachineNever) {
  setLocal(Keys::enableEvasKey, false);  // the most restrictive table
  for (const Target first : {On, Off, EvasOff}) EXPECT_TRUE(makeMachine(false).enter(kClasses[first])) << first;
  auto machine = makeMachine(false);
  EXPECT_FALSE(machine.enter<ForeignState>());
  setLocal(Keys::enableEvasKey, true);
  ASSERT_TRUE(machine.enter<EvasOffState>());
  EXPECT_TRUE(machine.state<EvasOffState>()->isValidNextState(typeid(ForeignState)));
  EXPECT_FALSE(machine.enter<ForeignState>());
  EXPECT_EQ(machine.currentState(), machine.state<EvasOffState>());
}

}  // namespace
}  // namespace varnel
