#pragma once
// The module's tester and feature switches in the host's user-defaults store
// (the UserDefaults in the host registry): writing a configuration preset and
// telling which preset the stored values match. Without a registered store,
// writes do nothing and reads find nothing.

#include <array>
#include <string_view>

#include "varnel/settings/VNLConfiguration.h"
#include "varnel/settings/VNLUserDefaultSetting.h"

namespace varnel {

class VNLCommerceSettings {
 public:
  /// The stored keys. Their texts are shared with the rest of the host app and
  /// with what testers already stored ("Hight" included), so they never change.
  struct UserDefaultKey {
    static constexpr std::string_view mockData = "com.ENTM.useMockDataSwitch";
    static constexpr std::string_view useEVAS = "com.ENTM.useEVASSwitch";
    static constexpr std::string_view mockEVAS = "com.ENTM.useEVASMockSwitch";
    static constexpr std::string_view apRenewNumberSegment = "com.ENTK.selectedSegmentAP";
    static constexpr std::string_view dataFromENTKSwitch = "com.ENTK.DataFromENTKSwitch";
    static constexpr std::string_view mockHightTrustTimeoutEnabled = "com.ENTK.MockHightTrustTimeoutEnabled";
    static constexpr std::string_view hideBringPassAlert = "com.ENTK.HideBringPassAlert";
    static constexpr std::string_view showColorfulAnnualPass = "com.ENTK.ShowColoredAnnualPass";
  };

  /// Every key, in the order they are read back.
  static constexpr std::array<std::string_view, 8> allKeys = {
      UserDefaultKey::mockData,
      UserDefaultKey::useEVAS,
      UserDefaultKey::mockEVAS,
      UserDefaultKey::apRenewNumberSegment,
      UserDefaultKey::dataFromENTKSwitch,
      UserDefaultKey::mockHightTrustTimeoutEnabled,
      UserDefaultKey::hideBringPassAlert,
      UserDefaultKey::showColorfulAnnualPass,
  };

  VNLCommerceSettings() = default;

  /// Writes the preset of `configuration` one key at a time, then synchronises
  /// the store once. For unknown nothing is written or synchronised.
  static void setDefaultsFor(VNLConfiguration configuration);

  /// One setting for each of allKeys that the store holds.
  static VNLUserDefaultSettings current();

  /// The first preset all of whose settings are stored (rideslot, apRenewals,
  /// legacy, zlt_4_5, oqs_4_5, in that order), else unknown. Other stored keys
  /// do not matter; a non-boolean under a preset key matches no preset.
  static VNLConfiguration currentConfiguration();

 private:
  /// Writes each setting under its key, then synchronises once.
  static void setDefault(const VNLUserDefaultSettings& settings);
};

}  // namespace varnel
