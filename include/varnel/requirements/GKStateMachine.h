#pragma once
// A small finite-state machine: a fixed set of state objects, one per class,
// and at most one current state. A state is named by its class
// (typeid(SomeState)). Entering a state succeeds when the machine holds a
// state of that class and either no state is current yet or the current
// state's isValidNextState allows it. Not thread-safe: one owner drives it.

#include <memory>
#include <typeindex>
#include <typeinfo>
#include <vector>

namespace varnel {

class GKState {
 public:
  virtual ~GKState() = default;

  /// Whether the machine may go from this state to a state of `stateClass`.
  /// Allows every class unless a subclass decides otherwise.
  virtual bool isValidNextState(std::type_index stateClass) const;
};

class GKStateMachine {
 public:
  /// Takes the states; of several states of one class, the first is kept.
  explicit GKStateMachine(std::vector<std::shared_ptr<GKState>> states);
  virtual ~GKStateMachine() = default;
  GKStateMachine(const GKStateMachine&) = delete;
  GKStateMachine& operator=(const GKStateMachine&) = delete;

  /// The machine's state of `stateClass`, or null.
  std::shared_ptr<GKState> stateForClass(std::type_index stateClass) const;
  template <typename State>
  std::shared_ptr<State> state() const {
    return std::static_pointer_cast<State>(stateForClass(typeid(State)));
  }

  /// Null until the first successful enter.
  std::shared_ptr<GKState> currentState() const { return current_; }

  bool canEnterState(std::type_index stateClass) const;
  template <typename State>
  bool canEnterState() const {
    return canEnterState(typeid(State));
  }

  /// Moves to the state of `stateClass` when canEnterState allows it; false
  /// otherwise, and the current state stays.
  bool enter(std::type_index stateClass);
  template <typename State>
  bool enter() {
    return enter(typeid(State));
  }

 private:
  std::vector<std::shared_ptr<GKState>> states_;
  std::shared_ptr<GKState> current_;
};

}  // namespace varnel
