#pragma once
// Any value, JSON body, or dictionary of string to any value.

#include <nlohmann/json.hpp>

namespace varnel {

using Json = nlohmann::json;

/// The value under `key` when `object` is an object holding a string there.
const std::string* jsonString(const Json& object, std::string_view key);

/// The value under `key` when `object` is an object, else null.
const Json* jsonMember(const Json& object, std::string_view key);

/// True when `value` is an object all of whose values are strings
/// ("a dictionary of strings"). An empty object qualifies.
bool isStringDictionary(const Json& value);

}  // namespace varnel
