#pragma once
// A value the user-defaults store can hold: boolean, integer, floating-point
// number, string, date, binary data, array or dictionary. Null stands for an
// absent element inside an array.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
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

/// The encoding as the text a store keeps, or none when it would not read
/// back as the same value: a number that is not finite, a string that is not
/// UTF-8, or a nesting beyond the JSON limits (each array or dictionary level
/// takes two levels of the encoding, so about 63 levels fit).
std::optional<std::string> defaultsValueText(const DefaultsValue& value);

/// A stored text read back within the JSON limits (varnel/platform/Json.h),
/// or why it cannot be ("nested deeper than 128 levels", "not a value this
/// store wrote").
struct DefaultsValueParse {
  std::optional<DefaultsValue> value;
  std::string problem;
};
DefaultsValueParse parseDefaultsValueText(std::string_view text);

/// Dates in RFC 3339, UTC with a "Z" (2027-11-22T05:35:00Z); a date outside
/// the years 1 to 9999 as its seconds since 1970.
std::string rfc3339(const Date& date);

}  // namespace varnel
