#pragma once
// One user-defaults key with its value, as kept in sets of settings.

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_set>

#include "varnel/platform/DefaultsValue.h"

namespace varnel {

/// Equality of stored values by kind: strings, data, dates, arrays (element
/// by element; two absent elements are equal), dictionaries (key by key) and
/// numbers or booleans. Numbers compare by value (1 equals 1.0); a boolean
/// equals only a boolean, never a number. Values of different kinds are
/// unequal.
bool userDefaultValuesEqual(const DefaultsValue& lhs, const DefaultsValue& rhs);

struct VNLUserDefaultSetting {
  std::string key;
  DefaultsValue value;

  VNLUserDefaultSetting(std::string settingKey, DefaultsValue settingValue)
      : key(std::move(settingKey)), value(std::move(settingValue)) {}

  /// Same key and values equal by userDefaultValuesEqual.
  friend bool operator==(const VNLUserDefaultSetting& lhs, const VNLUserDefaultSetting& rhs) {
    return lhs.key == rhs.key && userDefaultValuesEqual(lhs.value, rhs.value);
  }
};

}  // namespace varnel

/// Hashes the key alone, so settings of one key with different values share a
/// bucket and still count as different members of a set.
template <>
struct std::hash<varnel::VNLUserDefaultSetting> {
  std::size_t operator()(const varnel::VNLUserDefaultSetting& setting) const noexcept {
    return std::hash<std::string>{}(setting.key);
  }
};

namespace varnel {

using VNLUserDefaultSettings = std::unordered_set<VNLUserDefaultSetting>;

}  // namespace varnel
