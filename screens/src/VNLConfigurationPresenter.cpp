#include "varnel/screens/VNLConfigurationPresenter.h"

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/UserDefaults.h"

namespace varnel {

std::string_view VNLConfigurationPresenter::keyFor(VNLMockSwitch mockSwitch) {
  using Keys = VNLVarnel::Constants;
  switch (mockSwitch) {
    case VNLMockSwitch::entitlements: return Keys::varnelEntitlementMockKey;
    case VNLMockSwitch::createOrder: return Keys::varnelCreateOrderMockKey;
    case VNLMockSwitch::contract: return Keys::varnelContractMockKey;
    case VNLMockSwitch::env: return Keys::varnelEnv2HeaderKey;
    case VNLMockSwitch::pendingHeader: return Keys::VarnelPendingOrderHeaderKey;
    case VNLMockSwitch::env2ForCards: return Keys::VarnelENV2ForPaymentKey;
  }
  return {};
}

bool VNLConfigurationPresenter::storedValue(VNLMockSwitch mockSwitch) {
  const auto store = host::Registry::get<UserDefaults>();
  return store && store->boolForKey(keyFor(mockSwitch));
}

void VNLConfigurationPresenter::switchChanged(VNLMockSwitch mockSwitch, bool isOn) {
  const auto store = host::Registry::get<UserDefaults>();
  if (!store) return;
  store->setBool(keyFor(mockSwitch), isOn);
  store->synchronize();
}

}  // namespace varnel
