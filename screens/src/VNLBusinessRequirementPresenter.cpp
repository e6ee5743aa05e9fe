#include "varnel/screens/VNLBusinessRequirementPresenter.h"

#include <typeinfo>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"

namespace varnel {
namespace {

using Keys = VNLBusinessRequirementsKeys;
using Util = VNLBusinessRequirementUtil;
using Switch = VNLBusinessRequirementSwitch;

constexpr const char* kRequirementsSource = "Classes/BusinessRequirement/VNLBusinessRequirementTableViewController";

constexpr std::size_t index(Switch requirement) { return static_cast<std::size_t>(requirement); }

template <typename State>
bool isIn(const GKStateMachine& machine) {
  const auto current = machine.currentState();
  return current && typeid(*current) == typeid(State);
}

}  // namespace

std::string_view VNLBusinessRequirementPresenter::localKeyFor(Switch requirement) {
  switch (requirement) {
    case Switch::evas: return Keys::enableEvasKey;
    case Switch::commerce: return Keys::enableAnnualPassportCommerceKey;
    case Switch::renewals: return Keys::enableAnnualPassportRenewalsKey;
    case Switch::upgrades: return Keys::enableAnnualPassportUpgradesKey;
    case Switch::sales: return Keys::enableAnnualPassportSalesKey;
    case Switch::remoteValue: break;
  }
  return {};
}

std::string_view VNLBusinessRequirementPresenter::remoteKeyFor(Switch requirement) {
  switch (requirement) {
    case Switch::evas: return Keys::enableEvasKey;
    case Switch::commerce: return Keys::enableAnnualPassportCommerceRemoteKey;
    case Switch::renewals: return Keys::enableAnnualPassportRenewalsRemoteKey;
    case Switch::upgrades: return Keys::enableAnnualPassportUpgradesRemoteKey;
    case Switch::sales: return Keys::enableAnnualPassportSalesRemoteKey;
    case Switch::remoteValue: break;
  }
  return {};
}

const VNLSwitchState& VNLBusinessRequirementPresenter::switchState(Switch requirement) const {
  return switches_[index(requirement)];
}

VNLSwitchState& VNLBusinessRequirementPresenter::state(Switch requirement) { return switches_[index(requirement)]; }

void VNLBusinessRequirementPresenter::viewWillAppear() {
  if (!parkContext_) {
    KTVCPrintUtility::debugPrint("Park context is nil!", LogSite{kRequirementsSource, "viewWillAppear(_:)", __LINE__});
    return;
  }
  makeMachine();

  settleRequirementSwitches();
  if (!state(Switch::evas).isOn) machine_->enter<EvasOffState>();
  state(Switch::commerce).isOn ? machine_->enter<CommerceOnState>() : machine_->enter<CommerceOffState>();
  updateSwitchforBusinessRequirement();
}

void VNLBusinessRequirementPresenter::settleRequirementSwitches() {
  const bool isUsingRemote = state(Switch::remoteValue).isOn;
  for (const auto requirement : kVNLBusinessRequirementSwitches) {
    state(requirement).isOn = Util::setSwitchByBusinessRequirementKey(*parkContext_, remoteKeyFor(requirement),
                                                                      localKeyFor(requirement), isUsingRemote);
  }
}

void VNLBusinessRequirementPresenter::switchBusinessRequirement(Switch requirement, bool isOn) {
  state(requirement).isOn = isOn;
  if (requirement == Switch::remoteValue) {
    viewWillAppear();
    return;
  }
  if (!parkContext_) {
    KTVCPrintUtility::debugPrint("Park context is nil!",
                                 LogSite{kRequirementsSource, "switchBusinessRequirement(_:)", __LINE__});
    return;
  }
  const auto& context = *parkContext_;
  const bool usingRemote = state(Switch::remoteValue).isOn;
  switch (requirement) {
    case Switch::evas: Util::turnOnEvas(context, usingRemote, isOn); break;
    case Switch::commerce: Util::switchCommerce(context, usingRemote, isOn); break;
    case Switch::renewals: Util::switchAPRenewals(context, usingRemote, isOn); break;
    case Switch::upgrades: Util::switchAPUpgrade(context, usingRemote, isOn); break;
    case Switch::sales: Util::switchAPSales(context, usingRemote, isOn); break;
    case Switch::remoteValue: break;
  }
  if (requirement == Switch::commerce && !isOn) turnOffCommerceBR();
  // EVAS writes only its own value; the other switches show their values again
  // (EvasOffState turned them off on screen, not in the table).
  if (requirement == Switch::evas) settleRequirementSwitches();
  if (!machine_) makeMachine();
  enterMatchingState();
  updateSwitchforBusinessRequirement();
}

void VNLBusinessRequirementPresenter::makeMachine() {
  std::vector<std::shared_ptr<GKState>> states;
  for (auto made : {std::shared_ptr<BusinessRequirementState>(std::make_shared<CommerceOnState>()),
                    std::shared_ptr<BusinessRequirementState>(std::make_shared<CommerceOffState>()),
                    std::shared_ptr<BusinessRequirementState>(std::make_shared<EvasOffState>())}) {
    made->setParkContext(parkContext_);
    states.push_back(std::move(made));
  }
  machine_ = std::make_unique<BusinessRequirementStateMachine>(std::move(states));
}

void VNLBusinessRequirementPresenter::enterMatchingState() {
  const bool evas = Util::localValue(Keys::enableEvasKey);
  const bool commerce = Util::localValue(Keys::enableAnnualPassportCommerceKey);
  const std::type_index target = !evas      ? typeid(EvasOffState)
                                 : commerce ? typeid(CommerceOnState)
                                            : typeid(CommerceOffState);
  const auto current = machine_->currentState();
  if (current && std::type_index(typeid(*current)) == target) return;
  if (machine_->enter(target)) return;
  // EvasOffState is only left through CommerceOffState.
  if (isIn<EvasOffState>(*machine_) && machine_->enter<CommerceOffState>()) machine_->enter(target);
}

void VNLBusinessRequirementPresenter::updateSwitchforBusinessRequirement() {
  if (!machine_) return;
  const auto setAnnualPassSwitches = [&](bool enabled) {
    for (const auto requirement : {Switch::renewals, Switch::upgrades, Switch::sales}) {
      state(requirement).isEnabled = enabled;
      if (!enabled) state(requirement).isOn = false;
    }
  };
  if (isIn<EvasOffState>(*machine_)) {
    setAnnualPassSwitches(false);
    state(Switch::commerce) = {.isOn = false, .isEnabled = false};
  } else if (isIn<CommerceOffState>(*machine_)) {
    state(Switch::commerce).isEnabled = true;
    setAnnualPassSwitches(false);
  } else if (isIn<CommerceOnState>(*machine_)) {
    state(Switch::commerce).isEnabled = true;
    setAnnualPassSwitches(true);
  }
}

void VNLBusinessRequirementPresenter::turnOffCommerceBR() {
  const auto& context = *parkContext_;
  const bool usingRemote = state(Switch::remoteValue).isOn;
  Util::switchCommerce(context, usingRemote, false);
  Util::switchAPRenewals(context, usingRemote, false);
  Util::switchAPUpgrade(context, usingRemote, false);
  Util::switchAPSales(context, usingRemote, false);
}

}  // namespace varnel
