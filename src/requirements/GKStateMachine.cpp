#include "varnel/requirements/GKStateMachine.h"

#include <algorithm>

namespace varnel {
namespace {

std::type_index classOf(const GKState& state) { return typeid(state); }

}  // namespace

bool GKState::isValidNextState(std::type_index) const { return true; }

GKStateMachine::GKStateMachine(std::vector<std::shared_ptr<GKState>> states) {
  for (auto& state : states) {
    if (state && !stateForClass(classOf(*state))) states_.push_back(std::move(state));
  }
}

std::shared_ptr<GKState> GKStateMachine::stateForClass(std::type_index stateClass) const {
  const auto found = std::find_if(states_.begin(), states_.end(),
                                  [&](const auto& state) { return classOf(*state) == stateClass; });
  return found == states_.end() ? nullptr : *found;
}

bool GKStateMachine::canEnterState(std::type_index stateClass) const {
  if (!stateForClass(stateClass)) return false;
  return !current_ || current_->isValidNextState(stateClass);
}

bool GKStateMachine::enter(std::type_index stateClass) {
  if (!canEnterState(stateClass)) return false;
  current_ = stateForClass(stateClass);
  return true;
}

}  // namespace varnel
