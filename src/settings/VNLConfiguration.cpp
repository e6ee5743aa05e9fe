#include "varnel/settings/VNLConfiguration.h"

#include "varnel/settings/VNLCommerceSettings.h"

namespace varnel {
namespace {

using Key = VNLCommerceSettings::UserDefaultKey;

VNLUserDefaultSettings makePreset(bool useEVAS, bool hideBringPassAlert, bool showColorfulAnnualPass) {
  return {
      {std::string(Key::useEVAS), DefaultsValue(useEVAS)},
      {std::string(Key::hideBringPassAlert), DefaultsValue(hideBringPassAlert)},
      {std::string(Key::showColorfulAnnualPass), DefaultsValue(showColorfulAnnualPass)},
  };
}

}  // namespace

std::string_view rawValue(VNLConfiguration configuration) {
  switch (configuration) {
    case VNLConfiguration::legacy: return "Legacy";
    case VNLConfiguration::rideslot: return "Rideslot";
    case VNLConfiguration::apRenewals: return "APRenewals";
    case VNLConfiguration::zlt_4_5: return "zlt_4_5";
    case VNLConfiguration::oqs_4_5: return "oqs_4_5";
    case VNLConfiguration::zlt_4_6: return "zlt_4_6";
    case VNLConfiguration::oqs_4_6: return "oqs_4_6";
    case VNLConfiguration::unknown: break;
  }
  return "Unknown";
}

std::optional<VNLConfiguration> configurationFromRawValue(std::string_view text) {
  for (auto configuration : kAllVNLConfigurations) {
    if (rawValue(configuration) == text) return configuration;
  }
  return std::nullopt;
}

const VNLUserDefaultSettings& legacyConfiguration() {
  static const VNLUserDefaultSettings preset = makePreset(false, false, false);
  return preset;
}

const VNLUserDefaultSettings& rideslotConfiguration() {
  static const VNLUserDefaultSettings preset = makePreset(true, true, true);
  return preset;
}

const VNLUserDefaultSettings& apRenewalConfiguration() {
  static const VNLUserDefaultSettings preset = makePreset(true, false, false);
  return preset;
}

const VNLUserDefaultSettings& zlt_4_5_Configuration() {
  static const VNLUserDefaultSettings preset = makePreset(false, true, false);
  return preset;
}

const VNLUserDefaultSettings& oqs_4_5_Configuration() {
  static const VNLUserDefaultSettings preset = makePreset(false, true, true);
  return preset;
}

const VNLUserDefaultSettings* presetFor(VNLConfiguration configuration) {
  switch (configuration) {
    case VNLConfiguration::legacy: return &legacyConfiguration();
    case VNLConfiguration::rideslot: return &rideslotConfiguration();
    case VNLConfiguration::apRenewals:
    case VNLConfiguration::zlt_4_6:
    case VNLConfiguration::oqs_4_6: return &apRenewalConfiguration();
    case VNLConfiguration::zlt_4_5: return &zlt_4_5_Configuration();
    case VNLConfiguration::oqs_4_5: return &oqs_4_5_Configuration();
    case VNLConfiguration::unknown: break;
  }
  return nullptr;
}

}  // namespace varnel
