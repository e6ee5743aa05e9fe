#include "varnel/screens/VNLGlobalSettingsPresenter.h"

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/settings/VNLCommerceSettings.h"

namespace varnel {
namespace {

constexpr const char* kPresetsSource = "Classes/Bricks/VNLGlobalSettingsTableViewController";

bool presetValue(const VNLUserDefaultSettings& preset, std::string_view key) {
  for (const auto& setting : preset) {
    if (setting.key == key) {
      if (const auto* value = setting.value.get<bool>()) return *value;
    }
  }
  return false;
}

}  // namespace

std::string VNLGlobalSettingsPresenter::detailFor(VNLConfiguration configuration) {
  const auto* preset = presetFor(configuration);
  if (!preset) return "Writes nothing";
  using Key = VNLCommerceSettings::UserDefaultKey;
  std::string detail = presetValue(*preset, Key::useEVAS) ? "EVAS on" : "EVAS off";
  detail += presetValue(*preset, Key::hideBringPassAlert) ? ", bring-pass alert hidden" : ", bring-pass alert shown";
  detail += presetValue(*preset, Key::showColorfulAnnualPass) ? ", coloured passes" : ", plain passes";
  return detail;
}

void VNLGlobalSettingsPresenter::viewWillAppear() { currentConfiguration_ = VNLCommerceSettings::currentConfiguration(); }

void VNLGlobalSettingsPresenter::didSelect(VNLConfiguration configuration) { _didChangeSelection(configuration); }

void VNLGlobalSettingsPresenter::_didChangeSelection(VNLConfiguration configuration) {
  KTVCPrintUtility::debugPrint("Will configure for \"" + std::string(rawValue(configuration)) + "\"",
                               LogSite{kPresetsSource, "_didChangeSelection(to:)", __LINE__});
  VNLCommerceSettings::setDefaultsFor(configuration);
  currentConfiguration_ = configuration;
}

}  // namespace varnel
