#pragma once
// Any value, JSON body, or dictionary of string to any value; and the one way
// text from outside (files, settings values, service answers, requests)
// becomes one.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace varnel {

using Json = nlohmann::json;

/// The most text parseJson() reads: 16 MiB, far above any real answer or file.
inline constexpr std::size_t kJsonMaxBytes = std::size_t{16} << 20;

/// The deepest nesting of arrays and objects parseJson() accepts ("[]" is one
/// level, "[[]]" two). The library copies, compares and prints values by
/// recursion, so a value parsed within this limit can be copied, printed and
/// destroyed on any thread's stack.
inline constexpr std::size_t kJsonMaxDepth = 128;

struct JsonLimits {
  std::size_t maxBytes = kJsonMaxBytes;
  std::size_t maxDepth = kJsonMaxDepth;
  /// Refuse an object that names a key twice (otherwise the last one wins).
  bool refuseDuplicateKeys = false;
};

/// The limits for files people write (guest data, remote configuration): a
/// key named twice is refused rather than silently overridden.
inline constexpr JsonLimits kJsonLimitsUniqueKeys{kJsonMaxBytes, kJsonMaxDepth, true};

/// What parseJson() made of a text: the value, or why there is none.
struct JsonParse {
  std::optional<Json> value;
  /// For people, when there is no value: "not valid JSON (at byte 12)",
  /// "nested deeper than 128 levels", "larger than 16777216 bytes",
  /// "the key \"tax\" appears twice in one object".
  std::string refusal;

  explicit operator bool() const { return value.has_value(); }
};

/// Parses untrusted text within `limits`. Text beyond them is refused without
/// building the value: nesting is counted while parsing and the parse stops
/// at the first level too deep. Never throws.
JsonParse parseJson(std::string_view text, const JsonLimits& limits = {});

/// The value under `key` when `object` is an object holding a string there.
const std::string* jsonString(const Json& object, std::string_view key);

/// The value under `key` when `object` is an object, else null.
const Json* jsonMember(const Json& object, std::string_view key);

/// True when `value` is an object all of whose values are strings
/// ("a dictionary of strings"). An empty object qualifies.
bool isStringDictionary(const Json& value);

}  // namespace varnel
