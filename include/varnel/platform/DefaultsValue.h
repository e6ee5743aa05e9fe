#pragma once
// A value the user-defaults store can hold: boolean, integer, floating-point
// number, string, date, binary data, array or dictionary. Null stands for an
// absent element inside an array.

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

struct DefaultsValue;
using DefaultsData = std::vector<std::uint8_t>;
using DefaultsArray = std::vector<DefaultsValue>;
using DefaultsDictionary = std::map<std::string, DefaultsValue, std::less<>>;

struct DefaultsValue {
  using Storage = std::variant<std::monostate, bool, std::int64_t, double, std::string, Date,
                               DefaultsData, DefaultsArray, DefaultsDictionary>;
  Storage storage;

  DefaultsValue() = default;
  DefaultsValue(bool value) : storage(value) {}
  DefaultsValue(int value) : storage(std::int64_t{value}) {}
  DefaultsValue(std::int64_t value) : storage(value) {}
  DefaultsValue(double value) : storage(value) {}
  DefaultsValue(std::string value) : storage(std::move(value)) {}
  DefaultsValue(const char* value) : storage(std::string(value)) {}
  DefaultsValue(Date value) : storage(value) {}
  DefaultsValue(DefaultsData value) : storage(std::move(value)) {}
  DefaultsValue(DefaultsArray value) : storage(std::move(value)) {}
  DefaultsValue(DefaultsDictionary value) : storage(std::move(value)) {}

  bool isNull() const { return std::holds_alternative<std::monostate>(storage); }
  template <typename T>
  bool is() const { return std::holds_alternative<T>(storage); }
  template <typename T>
  const T* get() const { return std::get_if<T>(&storage); }

  /// Exact structural equality (same kinds, same contents).
  friend bool operator==(const DefaultsValue&, const DefaultsValue&) = default;
};

/// A readable JSON form: dates as RFC 3339 text, data as base64 text.
Json toDisplayJson(const DefaultsValue& value);

/// A lossless, kind-preserving JSON encoding and its inverse. Decoding answers
/// false on anything that is not such an encoding; it never throws.
Json encodeDefaultsValue(const DefaultsValue& value);
bool decodeDefaultsValue(const Json& encoded, DefaultsValue& out);

/// Dates in RFC 3339, UTC with a "Z" (2027-11-22T05:35:00Z).
std::string rfc3339(const Date& date);

}  // namespace varnel
