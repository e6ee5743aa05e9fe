#pragma once
// The terms-and-conditions configurations a tester can choose, and the preset
// of settings that each of them writes.

#include <array>
#include <optional>
#include <string_view>

#include "varnel/settings/VNLUserDefaultSetting.h"

namespace varnel {

enum class VNLConfiguration {
  unknown,
  legacy,
  rideslot,
  apRenewals,
  zlt_4_5,
  oqs_4_5,
  zlt_4_6,
  oqs_4_6,
};

/// Every case, in declaration order.
inline constexpr std::array<VNLConfiguration, 8> kAllVNLConfigurations = {
    VNLConfiguration::unknown,  VNLConfiguration::legacy,  VNLConfiguration::rideslot,
    VNLConfiguration::apRenewals, VNLConfiguration::zlt_4_5, VNLConfiguration::oqs_4_5,
    VNLConfiguration::zlt_4_6,  VNLConfiguration::oqs_4_6,
};

/// "Unknown", "Legacy", "Rideslot", "APRenewals", "zlt_4_5", "oqs_4_5",
/// "zlt_4_6", "oqs_4_6".
std::string_view rawValue(VNLConfiguration configuration);

/// The case whose raw value is exactly `rawValue` (case matters); none for
/// any other text.
std::optional<VNLConfiguration> configurationFromRawValue(std::string_view rawValue);

// The presets: three boolean settings each, over "com.ENTM.useEVASSwitch",
// "com.ENTK.HideBringPassAlert" and "com.ENTK.ShowColoredAnnualPass".
// Built once, on first use, from any thread.
const VNLUserDefaultSettings& legacyConfiguration();     // false, false, false
const VNLUserDefaultSettings& rideslotConfiguration();   // true,  true,  true
const VNLUserDefaultSettings& apRenewalConfiguration();  // true,  false, false
const VNLUserDefaultSettings& zlt_4_5_Configuration();   // false, true,  false
const VNLUserDefaultSettings& oqs_4_5_Configuration();   // false, true,  true

/// The preset that `configuration` writes: none for unknown; zlt_4_6 and
/// oqs_4_6 write the annual-pass renewal preset.
const VNLUserDefaultSettings* presetFor(VNLConfiguration configuration);

}  // namespace varnel
