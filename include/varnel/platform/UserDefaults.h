#pragma once
// The user-defaults store: a persistent string-keyed store of DefaultsValue.
// Implementations: SQLite in the stand-alone host, in memory for tests.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/DefaultsValue.h"

namespace varnel {

class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// The value stored under `key`, or none.
  virtual std::optional<DefaultsValue> objectForKey(std::string_view key) const = 0;
  virtual void setObject(std::string_view key, DefaultsValue value) = 0;
  virtual void removeObjectForKey(std::string_view key) = 0;
  /// Every key the store holds, with its value.
  virtual std::map<std::string, DefaultsValue, std::less<>> dictionaryRepresentation() const = 0;
  /// Writes out everything set so far; false when that failed.
  virtual bool synchronize() = 0;

  // Typed reads, as the platform coerces them.
  /// A boolean, a non-zero number, or the text "YES"/"true"/"1" (any case) is true.
  bool boolForKey(std::string_view key) const;
  /// A double is cut to a whole number; beyond the range of one it reads as
  /// the nearest end of the range.
  std::int64_t integerForKey(std::string_view key) const;
  double doubleForKey(std::string_view key) const;
  /// A string as it is, a number as its text; otherwise none.
  std::optional<std::string> stringForKey(std::string_view key) const;

  void setBool(std::string_view key, bool value) { setObject(key, DefaultsValue(value)); }
  void setInteger(std::string_view key, std::int64_t value) { setObject(key, DefaultsValue(value)); }
  void setDouble(std::string_view key, double value) { setObject(key, DefaultsValue(value)); }
  void setString(std::string_view key, std::string value) { setObject(key, DefaultsValue(std::move(value))); }
};

}  // namespace varnel
