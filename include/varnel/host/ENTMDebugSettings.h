#pragma once
// What the entitlements manager publishes from its debug settings screen.

#include <string_view>

namespace varnel {

struct ENTMDebugSettings {
  /// User-defaults key of the screen's context switch: orders go to the
  /// resorts' short store codes instead of the mobile stores.
  static constexpr std::string_view contextKey = "com.ENTM.debugSettings.context";
};

}  // namespace varnel
