#pragma once
// What the mock-switch screen does, without a display: the six tester
// switches, each kept as a boolean in the user-defaults store (the
// UserDefaults in the host registry) under the facade's key for it.

#include <array>
#include <string_view>

namespace varnel {

enum class VNLMockSwitch {
  entitlements,   // mock entitlement data
  createOrder,    // mock create-order answers
  contract,       // canned monthly contract
  env,            // send the environment-2 header
  pendingHeader,  // send the pending-order header
  env2ForCards,   // environment 2 for payment cards
};

inline constexpr std::array<VNLMockSwitch, 6> kAllVNLMockSwitches = {
    VNLMockSwitch::entitlements, VNLMockSwitch::createOrder,   VNLMockSwitch::contract,
    VNLMockSwitch::env,          VNLMockSwitch::pendingHeader, VNLMockSwitch::env2ForCards,
};

class VNLConfigurationPresenter {
 public:
  /// The user-defaults key of `mockSwitch` (VNLVarnel::Constants).
  static std::string_view keyFor(VNLMockSwitch mockSwitch);

  /// What the switch shows when the screen loads: the stored value read as a
  /// boolean; false when nothing is stored or there is no store.
  static bool storedValue(VNLMockSwitch mockSwitch);

  /// Stores `isOn` as a boolean under the switch's key and synchronises the
  /// store. Without a store nothing happens.
  static void switchChanged(VNLMockSwitch mockSwitch, bool isOn);
};

}  // namespace varnel
