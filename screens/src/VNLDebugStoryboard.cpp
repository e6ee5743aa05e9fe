#include "varnel/screens/VNLDebugStoryboard.h"

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/screens/ServerErrorRoutingDebugViewController.h"
#include "varnel/screens/VNLBusinessRequirementTableViewController.h"
#include "varnel/screens/VNLConfigurationViewController.h"
#include "varnel/screens/VNLGlobalSettingsTableViewController.h"

namespace varnel {

std::optional<VNLDebugStoryboard> VNLDebugStoryboard::storyboardWithName(std::string_view name,
                                                                        const PLNTBundle& bundle) {
  if (name != kName || bundle.name != VNLVarnel::Constants::varnelBundleName) return std::nullopt;
  return VNLDebugStoryboard();
}

std::unique_ptr<QWidget> VNLDebugStoryboard::instantiateViewControllerWithIdentifier(
    std::string_view identifier) const {
  if (identifier == kConfigurationIdentifier) return std::make_unique<VNLConfigurationViewController>();
  if (identifier == kPresetsIdentifier) return std::make_unique<VNLGlobalSettingsTableViewController>();
  if (identifier == kBusinessRequirementsIdentifier) return std::make_unique<VNLBusinessRequirementTableViewController>();
  if (identifier == kServerErrorRoutingIdentifier) return std::make_unique<ServerErrorRoutingDebugViewController>();
  return nullptr;
}

}  // namespace varnel
