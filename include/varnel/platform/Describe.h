#pragma once
// The platform's default descriptions of values, used in every log line and
// debug description so they read like the host's other platform:
//   dates     2024-03-10 19:35:20 +0000
//   floats    shortest round-trip, ".0" when whole (0.0, 12.5)
//   booleans  true / false
//   optionals Optional(x) or nil (strings quoted inside: Optional("a"))
//   lists     ["a", "b"], [1.0, 2.5]
//   maps      ["key": "value"], [:] when empty

#include <concepts>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "varnel/platform/Date.h"

namespace varnel {

std::string describe(std::string_view text);
std::string describe(bool value);
std::string describe(float value);
std::string describe(double value);
std::string describe(const Date& date);

template <std::integral Integer>
  requires(!std::same_as<Integer, bool>)
std::string describe(Integer value) {
  return std::to_string(value);
}

/// A string as it prints inside a list or an optional: quoted, with escapes.
std::string quotedDescription(std::string_view text);

template <typename T>
concept HasDebugDescription = requires(const T& value) {
  { value.debugDescription() } -> std::convertible_to<std::string>;
};

/// How a value prints inside a list or an optional.
template <typename T>
std::string describeNested(const T& value);

template <typename T>
std::string describe(const std::optional<T>& value) {
  return value ? "Optional(" + describeNested(*value) + ")" : "nil";
}

template <typename T>
std::string describe(const std::vector<T>& values) {
  std::string text = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i) text += ", ";
    text += describeNested(values[i]);
  }
  return text + "]";
}

template <typename Key, typename Value, typename Compare, typename Allocator>
std::string describe(const std::map<Key, Value, Compare, Allocator>& dictionary) {
  if (dictionary.empty()) return "[:]";
  std::string text = "[";
  for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
    if (it != dictionary.begin()) text += ", ";
    text += describeNested(it->first) + ": " + describeNested(it->second);
  }
  return text + "]";
}

template <typename T>
std::string describe(const std::shared_ptr<T>& pointer) {
  return pointer ? describeNested(*pointer) : "nil";
}

template <typename T>
std::string describeNested(const T& value) {
  if constexpr (std::is_convertible_v<const T&, std::string_view>) {
    return quotedDescription(value);
  } else if constexpr (HasDebugDescription<T>) {
    return value.debugDescription();
  } else {
    return describe(value);
  }
}

}  // namespace varnel
