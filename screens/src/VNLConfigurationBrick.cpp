#include "varnel/screens/VNLConfigurationBrick.h"

#include <exception>

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/PLNTBundle.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/screens/VNLConfigurationViewController.h"
#include "varnel/screens/VNLDebugStoryboard.h"

namespace varnel {
namespace {

constexpr const char* kBrickSource = "Classes/Bricks/VNLConfigurationBrick";

std::optional<PLNTBundle> moduleBundle() {
  const auto name = VNLVarnel::Constants::varnelBundleName;
  if (const auto lookup = host::Registry::get<PLNTBundleLookup>()) return lookup->bundleFromMainBundleOrFramework(name);
  return PLNTBundle{std::string(name), varnelResourceDirectory()};
}

}  // namespace

std::unique_ptr<PLNTViewController> VNLConfigurationBrick::configurationViewController(
    const PLNTInvocation& invocation) {
  const LogSite site{kBrickSource, "configurationViewController(_:)", __LINE__};
  try {
    const auto bundle = moduleBundle();
    if (!bundle) {
      KTVCPrintUtility::errorPrint("The module's bundle is not found", site);
      return nullptr;
    }
    const auto storyboard = VNLDebugStoryboard::storyboardWithName(VNLConfigurationStoryboardName, *bundle);
    if (!storyboard) {
      KTVCPrintUtility::errorPrint("The storyboard " + std::string(VNLConfigurationStoryboardName) + " is not found",
                                   site);
      return nullptr;
    }
    auto screen = storyboard->instantiateViewControllerWithIdentifier(VNLDebugStoryboard::kConfigurationIdentifier);
    if (auto* configuration = qobject_cast<VNLConfigurationViewController*>(screen.get())) {
      auto context = invocation.parkContext();
      configuration->setParkContext(context ? std::move(context) : parkContext_);
    }
    return screen;
  } catch (const std::exception& error) {
    KTVCPrintUtility::errorPrint(std::string("The configuration screen could not be made: ") + error.what(), site);
    return nullptr;
  }
}

}  // namespace varnel
