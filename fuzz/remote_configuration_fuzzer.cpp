// Any bytes, as a remote configuration file: what loads becomes the host's
// remote configuration, and every business-requirement switch is settled from
// it as the tester screen and `varnel requirements` do.

#include "FuzzHost.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  using Keys = VNLBusinessRequirementsKeys;
  using Util = VNLBusinessRequirementUtil;
  fuzz::installHostOnce();
  const auto loaded =
      standalone::JsonRemoteConfiguration::parse(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!loaded) {
    if (!jsonString(loaded.error().userInfo, "message")) __builtin_trap();
    return 0;
  }
  host::Registry::set<KTVRRemoteConfiguration>(loaded.value());
  const KTVCParkResortContext context;
  constexpr std::pair<std::string_view, std::string_view> kSwitches[] = {
      {Keys::enableEvasKey, Keys::enableEvasKey},
      {Keys::enableAnnualPassportCommerceRemoteKey, Keys::enableAnnualPassportCommerceKey},
      {Keys::enableAnnualPassportRenewalsRemoteKey, Keys::enableAnnualPassportRenewalsKey},
      {Keys::enableAnnualPassportUpgradesRemoteKey, Keys::enableAnnualPassportUpgradesKey},
      {Keys::enableAnnualPassportSalesRemoteKey, Keys::enableAnnualPassportSalesKey},
      {Keys::enableRideslotKey, Keys::enableRideslotKey},
  };
  for (bool usingRemote : {false, true}) {
    for (const auto& [remoteKey, localKey] : kSwitches) {
      (void)Util::setSwitchByBusinessRequirementKey(context, remoteKey, localKey, usingRemote);
    }
  }
  for (const auto& [key, value] : Util::remoteValues()) (void)(key.size() + value);
  Util::resetToInitialValues();
  host::Registry::set<KTVRRemoteConfiguration>(nullptr);
  return 0;
}
