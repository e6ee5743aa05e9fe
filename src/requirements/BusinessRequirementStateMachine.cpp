#include "varnel/requirements/BusinessRequirementStateMachine.h"

#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"

namespace varnel {
namespace {

struct Switches {
  bool evas;
  bool commerce;
};

/// EVAS and commerce from one snapshot of the local table; absent is off.
Switches localSwitches() {
  const auto local = VNLBusinessRequirementUtil::localValues();
  const auto value = [&](std::string_view key) {
    const auto found = local.find(key);
    return found != local.end() && found->second;
  };
  return {value(VNLBusinessRequirementsKeys::enableEvasKey),
          value(VNLBusinessRequirementsKeys::enableAnnualPassportCommerceKey)};
}

bool is(std::type_index stateClass, const std::type_info& expected) { return stateClass == std::type_index(expected); }

}  // namespace

bool CommerceOnState::isValidNextState(std::type_index stateClass) const {
  const auto [evas, commerce] = localSwitches();
  if (evas && commerce) return false;
  if (evas) return is(stateClass, typeid(CommerceOffState));
  if (commerce) return is(stateClass, typeid(EvasOffState));
  return is(stateClass, typeid(EvasOffState)) || is(stateClass, typeid(CommerceOffState));
}

bool CommerceOffState::isValidNextState(std::type_index stateClass) const {
  const auto [evas, commerce] = localSwitches();
  if (evas && commerce) return is(stateClass, typeid(CommerceOnState));
  if (evas) return false;
  if (commerce) return is(stateClass, typeid(CommerceOnState)) || is(stateClass, typeid(EvasOffState));
  return is(stateClass, typeid(EvasOffState));
}

bool EvasOffState::isValidNextState(std::type_index stateClass) const {
  if (!localSwitches().evas) return false;
  return !is(stateClass, typeid(EvasOffState)) && !is(stateClass, typeid(CommerceOnState));
}

}  // namespace varnel
