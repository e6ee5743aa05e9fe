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

TEST_F(StateMachineTest, LeavingEvasOffNeedsEvasTurnedOnAndGoesThroughCommerceOff) {
  setLocal(false, true);
  auto machine = makeMachine(false);
  ASSERT_TRUE(machine->enter<EvasOffState>());
  EXPECT_FALSE(machine->enter<CommerceOffState>());
  EXPECT_FALSE(machine->enter<CommerceOnState>());

  VNLBusinessRequirementUtil::turnOnEvas(context, false, true);
  EXPECT_FALSE(machine->enter<CommerceOnState>());
  EXPECT_TRUE(machine->enter<CommerceOffState>());
  EXPECT_TRUE(machine->enter<CommerceOnState>());
  EXPECT_FALSE(machine->enter<CommerceOffState>()) << "both switches on: commerce-on cannot be left";
}

/// Records its machine's callbacks.
class RecordingState : public GKState {
 public:
  explicit RecordingState(std::vector<std::string>& journal, std::string name)
      : journal_(journal), name_(std::move(name)) {}
  void didEnter(GKState* previous) override {
    journal_.push_back(name_ + " entered from " + (previous ? static_cast<RecordingState*>(previous)->name_ : "none"));
  }
  void willExit(GKState* next) override {
    journal_.push_back(name_ + " exits to " + static_cast<RecordingState*>(next)->name_);
  }

 private:
  std::vector<std::string>& journal_;
  std::string name_;
};

class First final : public RecordingState {
  using RecordingState::RecordingState;
};
class Second final : public RecordingState {
  using RecordingState::RecordingState;
  bool isValidNextState(std::type_index next) const override { return next != typeid(Second); }
};

TEST(GKStateMachine, TellsStatesOfEachMoveAndKeepsTheFirstStateOfAClass) {
  std::vector<std::string> journal;
  auto first = std::make_shared<First>(journal, "first");
  auto second = std::make_shared<Second>(journal, "second");
  auto duplicate = std::make_shared<Second>(journal, "duplicate");
  GKStateMachine machine({first, nullptr, second, duplicate});
  EXPECT_EQ(machine.state<Second>(), second);
  EXPECT_EQ(second->stateMachine(), &machine);
  EXPECT_EQ(duplicate->stateMachine(), nullptr);

  EXPECT_TRUE(machine.enter<Second>());
  EXPECT_FALSE(machine.enter<Second>());
  EXPECT_TRUE(machine.enter<First>());
  EXPECT_TRUE(machine.enter<First>()) << "a plain state allows any next state, itself included";
  EXPECT_EQ(journal, (std::vector<std::string>{"second entered from none", "second exits to first",
                                               "first entered from second", "first exits to first",
                                               "first entered from first"}));
}

}  // namespace
}  // namespace varnel
