#pragma once
// The commerce states and the machine over them. Which state may follow which
// is decided by the local business-requirement values at the moment of the
// request (EVAS E = "com.orvane.EvasEnabled", commerce C =
// "com.orvane.enableAnnualPassportCommerce", each false when absent); remote
// values play no part, and no state may follow itself.
//
//   from CommerceOnState:   E and not C: CommerceOffState
//                           E and C:     none
//                           C, not E:    EvasOffState
//                           neither:     EvasOffState, CommerceOffState
//   from CommerceOffState:  E and C:     CommerceOnState
//                           E, not C:    none
//                           C, not E:    CommerceOnState, EvasOffState
//                           neither:     EvasOffState
//   from EvasOffState:      E:           any class but EvasOffState and CommerceOnState
//                           not E:       none
//
// The rule is deliberately lopsided: with both switches on, CommerceOnState
// cannot be left, and leaving EvasOffState always goes through
// CommerceOffState. The screen writes the local table first, then enters the
// state that matches it.

#include <memory>
#include <vector>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/requirements/GKStateMachine.h"

namespace varnel {

/// A commerce state; carries the host's park context for its owner.
class BusinessRequirementState : public GKState {
 public:
  /// Set by the screen that creates the state; the transition rule ignores it.
  std::shared_ptr<KTVCParkResortContext> parkContext() const { return parkContext_; }
  void setParkContext(std::shared_ptr<KTVCParkResortContext> context) { parkContext_ = std::move(context); }

 private:
  std::shared_ptr<KTVCParkResortContext> parkContext_;
};

/// Annual-pass commerce is on.
class CommerceOnState final : public BusinessRequirementState {
 public:
  CommerceOnState() = default;
  bool isValidNextState(std::type_index stateClass) const override;
};

/// Annual-pass commerce is off.
class CommerceOffState final : public BusinessRequirementState {
 public:
  CommerceOffState() = default;
  bool isValidNextState(std::type_index stateClass) const override;
};

/// The EVAS services are off.
class EvasOffState final : public BusinessRequirementState {
 public:
  EvasOffState() = default;
  bool isValidNextState(std::type_index stateClass) const override;
};

class BusinessRequirementStateMachine final : public GKStateMachine {
 public:
  explicit BusinessRequirementStateMachine(std::vector<std::shared_ptr<GKState>> states)
      : GKStateMachine(std::move(states)) {}
};

}  // namespace varnel
