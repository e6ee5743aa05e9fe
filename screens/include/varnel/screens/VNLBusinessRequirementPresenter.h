#pragma once
// What the business-requirement screen does, without a display: it settles
// each switch from the remote and local values, keeps a commerce state
// machine in step with the local table, and enables or disables the switches
// by the machine's state:
//
//   EvasOffState      commerce, renewals, upgrades and sales off and disabled
//   CommerceOffState  commerce enabled; renewals, upgrades and sales off and disabled
//   CommerceOnState   renewals, upgrades and sales enabled
//
// The EVAS and remote-value switches are always enabled. Main thread only.

#include <array>
#include <memory>
#include <string_view>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/requirements/BusinessRequirementStateMachine.h"

namespace varnel {

enum class VNLBusinessRequirementSwitch {
  evas,
  commerce,
  renewals,
  upgrades,
  sales,
  remoteValue,  // show remote values where there are usable ones
};

/// The switches that stand for a business requirement, in the order they are settled.
inline constexpr std::array<VNLBusinessRequirementSwitch, 5> kVNLBusinessRequirementSwitches = {
    VNLBusinessRequirementSwitch::evas,     VNLBusinessRequirementSwitch::commerce,
    VNLBusinessRequirementSwitch::renewals, VNLBusinessRequirementSwitch::upgrades,
    VNLBusinessRequirementSwitch::sales,
};

struct VNLSwitchState {
  bool isOn = false;
  bool isEnabled = true;
  friend bool operator==(const VNLSwitchState&, const VNLSwitchState&) = default;
};

class VNLBusinessRequirementPresenter {
 public:
  /// The local-table key of a requirement switch; empty for remoteValue.
  static std::string_view localKeyFor(VNLBusinessRequirementSwitch requirement);
  /// The remote-configuration key (EVAS uses its single key for both).
  static std::string_view remoteKeyFor(VNLBusinessRequirementSwitch requirement);

  std::shared_ptr<KTVCParkResortContext> parkContext() const { return parkContext_; }
  void setParkContext(std::shared_ptr<KTVCParkResortContext> context) { parkContext_ = std::move(context); }

  /// Null until the screen has appeared with a park context.
  BusinessRequirementStateMachine* businessRequirementStateMachine() const { return machine_.get(); }

  const VNLSwitchState& switchState(VNLBusinessRequirementSwitch requirement) const;

  /// On appearing: without a park context logs "Park context is nil!" and
  /// changes nothing. Otherwise makes a fresh machine, settles each switch
  /// (VNLBusinessRequirementUtil::setSwitchByBusinessRequirementKey, remote
  /// values asked for when the remote-value switch is on), enters the state
  /// that matches EVAS and commerce, and updates the switches from it.
  void viewWillAppear();

  /// A tester moved a switch. A requirement switch writes its local value,
  /// moves the machine and updates the switches; commerce off also clears
  /// renewals, upgrades and sales, while EVAS writes only its own value and
  /// settles the other switches again. The remote-value switch settles every
  /// switch again, as on appearing.
  void switchBusinessRequirement(VNLBusinessRequirementSwitch requirement, bool isOn);

 private:
  VNLSwitchState& state(VNLBusinessRequirementSwitch requirement);
  /// Sets each requirement switch on or off from the remote and local values.
  void settleRequirementSwitches();
  /// A fresh machine with the three states, each given the park context.
  void makeMachine();
  /// Enters the state that the local table calls for, through
  /// CommerceOffState when EvasOffState can only be left that way.
  void enterMatchingState();
  /// Sets the switches' on and enabled states from the machine's state.
  void updateSwitchforBusinessRequirement();
  /// Commerce is off: renewals, upgrades and sales go off in the local table too.
  void turnOffCommerceBR();

  std::shared_ptr<KTVCParkResortContext> parkContext_;
  std::unique_ptr<BusinessRequirementStateMachine> machine_;
  std::array<VNLSwitchState, 6> switches_{};
};

}  // namespace varnel
