#include "varnel/settings/VNLCommerceSettings.h"

#include <algorithm>
#include <utility>

#include "varnel/host/Registry.h"
#include "varnel/platform/UserDefaults.h"

namespace varnel {
namespace {

std::shared_ptr<UserDefaults> standardUserDefaults() { return host::Registry::get<UserDefaults>(); }

bool isSubset(const VNLUserDefaultSettings& preset, const VNLUserDefaultSettings& stored) {
  return std::all_of(preset.begin(), preset.end(),
                     [&](const VNLUserDefaultSetting& setting) { return stored.contains(setting); });
}

}  // namespace

void VNLCommerceSettings::setDefaultsFor(VNLConfiguration configuration) {
  if (const auto* preset = presetFor(configuration)) setDefault(*preset);
}

void VNLCommerceSettings::setDefault(const VNLUserDefaultSettings& settings) {
  const auto store = standardUserDefaults();
  if (!store) return;
  for (const auto& setting : settings) store->setObject(setting.key, setting.value);
  store->synchronize();
}

VNLUserDefaultSettings VNLCommerceSettings::current() {
  VNLUserDefaultSettings settings;
  const auto store = standardUserDefaults();
  if (!store) return settings;
  const auto stored = store->dictionaryRepresentation();
  for (const auto key : allKeys) {
    if (!stored.contains(key)) continue;
    if (auto value = store->objectForKey(key)) settings.emplace(std::string(key), std::move(*value));
  }
  return settings;
}

VNLConfiguration VNLCommerceSettings::currentConfiguration() {
  static const std::pair<const VNLUserDefaultSettings*, VNLConfiguration> kRecognisedInOrder[] = {
      {&rideslotConfiguration(), VNLConfiguration::rideslot},
      {&apRenewalConfiguration(), VNLConfiguration::apRenewals},
      {&legacyConfiguration(), VNLConfiguration::legacy},
      {&zlt_4_5_Configuration(), VNLConfiguration::zlt_4_5},
      {&oqs_4_5_Configuration(), VNLConfiguration::oqs_4_5},
  };
  const auto stored = current();
  for (const auto& [preset, configuration] : kRecognisedInOrder) {
    if (isSubset(*preset, stored)) return configuration;
  }
  return VNLConfiguration::unknown;
}

}  // namespace varnel
