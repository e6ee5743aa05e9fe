#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RequirementsFixture.h"
#include "varnel/requirements/BusinessRequirementStateMachine.h"

namespace varnel {
namespace {

/// A state that belongs to no commerce rule.
class ForeignState final : public GKState {};

enum Target { On, Off, EvasOff, Foreign };

struct TransitionRow {
  Target from;
  bool evas;
  bool commerce;
  std::set<Target> allowed;
};

std::type_index classOf(Target target) {
  switch (target) {
    case On: return typeid(CommerceOnState);
    case Off: return typeid(CommerceOffState);
    case EvasOff: return typeid(EvasOffState);
    case Foreign: break;
  }
  return typeid(ForeignState);
}

std::string nameOf(Target target) {
  const char* names[] = {"CommerceOnState", "CommerceOffState", "EvasOffState", "ForeignState"};
  return names[target];
}

std::shared_ptr<BusinessRequirementStateMachine> makeMachine(bool withForeignState) {
  std::vector<std::shared_ptr<GKState>> states = {std::make_shared<CommerceOnState>(),
                                                  std::make_shared<CommerceOffState>(),
                                                  std::make_shared<EvasOffState>()};
  if (withForeignState) states.push_back(std::make_shared<ForeignState>());
  return std::make_shared<BusinessRequirementStateMachine>(std::move(states));
}

class StateMachineTest : public testing::RequirementsFixture {};

TEST_F(StateMachineTest, EveryRowOfTheTransitionRule) {
  const TransitionRow rows[] = {
      {On, true, false, {Off}},
      {On, true, true, {}},
      {On, false, true, {EvasOff}},
      {On, false, false, {EvasOff, Off}},
      {Off, true, true, {On}},
      {Off, true, false, {}},
      {Off, false, true, {On, EvasOff}},
      {Off, false, false, {EvasOff}},
      {EvasOff, true, true, {Off, Foreign}},
      {EvasOff, true, false, {Off, Foreign}},
      {EvasOff, false, true, {}},
      {EvasOff, false, false, {}},
  };
  for (const auto& row : rows) {
    for (const Target target : {On, Off, EvasOff, Foreign}) {
      SCOPED_TRACE(nameOf(row.from) + " -> " + nameOf(target) + " with EVAS " + (row.evas ? "on" : "off") +
                   ", commerce " + (row.commerce ? "on" : "off"));
      auto machine = makeMachine(true);
      ASSERT_TRUE(machine->enter(classOf(row.from)));
      // The rule reads the table when asked, not when the state was entered.
      setLocal(row.evas, row.commerce);
      const bool allowed = row.allowed.contains(target);
      EXPECT_EQ(machine->canEnterState(classOf(target)), allowed);
      EXPECT_EQ(machine->enter(classOf(target)), allowed);
      EXPECT_EQ(std::type_index(typeid(*machine->currentState())), classOf(allowed ? target : row.from));
    }
  }
}

TEST_F(StateMachineTest, AbsentSwitchesCountAsOff) {
  VNLBusinessRequirementUtil::setLocalValues({});
  auto machine = makeMachine(false);
  ASSERT_TRUE(machine->enter<CommerceOnState>());
  EXPECT_FALSE(machine->canEnterState<CommerceOnState>());
  EXPECT_TRUE(machine->canEnterState<CommerceOffState>());
  EXPECT_TRUE(machine->enter<EvasOffState>());
  EXPECT_FALSE(machine->canEnterState<CommerceOffState>());
}

TEST_F(StateMachineTest, AnyStateMayComeFirstButAClassForeignToTheMachineNever) {
  setLocal(false, false);  // the most restrictive table
  for (const Target first : {On, Off, EvasOff}) {
    auto machine = makeMachine(false);
    EXPECT_EQ(machine->currentState(), nullptr);
    EXPECT_TRUE(machine->enter(classOf(first))) << nameOf(first);
  }
  setLocal(true, false);
  auto machine = makeMachine(false);
  EXPECT_FALSE(machine->enter<ForeignState>()) << "not one of the machine's states, even as the first";
  ASSERT_TRUE(machine->enter<EvasOffState>());
  EXPECT_TRUE(machine->state<EvasOffState>()->isValidNextState(typeid(ForeignState)));
  EXPECT_FALSE(machine->canEnterState<ForeignState>());
  EXPECT_FALSE(machine->enter<ForeignState>());
  EXPECT_EQ(machine->currentState(), machine->state<EvasOffState>());
}

}  // namespace
}  // namespace varnel
