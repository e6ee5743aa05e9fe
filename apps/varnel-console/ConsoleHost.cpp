#include "ConsoleHost.h"

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel::console {

std::optional<PLNTBundle> ConsoleBundleLookup::bundleFromMainBundleOrFramework(std::string_view bundleName) const {
  if (bundleName != VNLVarnel::Constants::varnelBundleName) return std::nullopt;
  return PLNTBundle{std::string(bundleName), varnelResourceDirectory()};
}

std::string parkName(const KTVCParkResortContext& context) {
  const auto park = context.resortChoice();
  const char* name = park == kResortChoiceWest ? "west resort" : park == kResortChoiceEast ? "east resort" : "park";
  return std::string(name) + " (" + std::to_string(park) + ")";
}

}  // namespace varnel::console
