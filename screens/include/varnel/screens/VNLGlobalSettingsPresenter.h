#pragma once
// What the configuration-preset list does, without a display: one row per
// VNLConfiguration, a check mark on the configuration in force, and writing a
// preset when a row is chosen.

#include <string>

#include "varnel/settings/VNLConfiguration.h"

namespace varnel {

class VNLGlobalSettingsPresenter {
 public:
  /// The rows, one per configuration, in declaration order.
  static constexpr const auto& rows() { return kAllVNLConfigurations; }

  /// A line that says what the row's preset writes ("EVAS on, bring-pass
  /// alert hidden, coloured passes"); for unknown, that it writes nothing.
  static std::string detailFor(VNLConfiguration configuration);

  /// On appearing: the check mark goes to the configuration that the stored
  /// settings match (VNLCommerceSettings::currentConfiguration()).
  void viewWillAppear();

  /// On choosing a row: logs "Will configure for "<raw value>"", writes the
  /// row's preset (VNLCommerceSettings::setDefaultsFor) and moves the check
  /// mark to the row, even when the stored values read back as another preset.
  void didSelect(VNLConfiguration configuration);

  /// The row that carries the check mark.
  VNLConfiguration currentConfiguration() const { return currentConfiguration_; }

 private:
  void _didChangeSelection(VNLConfiguration configuration);

  VNLConfiguration currentConfiguration_ = VNLConfiguration::unknown;
};

}  // namespace varnel
