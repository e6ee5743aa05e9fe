#pragma once
// The storyboard "VNLDebug": the tester screens, laid out as Designer forms
// and compiled into the module. It is found in the module's own bundle only,
// and makes each screen by its identifier (the screen's class name).

#include <QWidget>

#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "varnel/host/PLNTBundle.h"

namespace varnel {

class VNLDebugStoryboard {
 public:
  static constexpr std::string_view kName = "VNLDebug";
  static constexpr std::string_view kConfigurationIdentifier = "VNLConfigurationViewController";
  static constexpr std::string_view kPresetsIdentifier = "VNLGlobalSettingsTableViewController";
  static constexpr std::string_view kBusinessRequirementsIdentifier = "VNLBusinessRequirementTableViewController";
  static constexpr std::string_view kServerErrorRoutingIdentifier = "ServerErrorRoutingDebugViewController";
  static constexpr std::array<std::string_view, 4> kIdentifiers = {
      kConfigurationIdentifier, kPresetsIdentifier, kBusinessRequirementsIdentifier, kServerErrorRoutingIdentifier};

  /// "storyboardWithName:bundle:": the storyboard called `name` in `bundle`;
  /// none unless `name` is "VNLDebug" and `bundle` is the module's ("Varnel").
  static std::optional<VNLDebugStoryboard> storyboardWithName(std::string_view name, const PLNTBundle& bundle);

  /// A new screen for `identifier`; null for an identifier the storyboard lacks.
  std::unique_ptr<QWidget> instantiateViewControllerWithIdentifier(std::string_view identifier) const;
};

}  // namespace varnel
