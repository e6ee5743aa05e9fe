#include "varnel/platform/Json.h"

namespace varnel {

const Json* jsonMember(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  auto it = object.find(key);
  return it == object.end() ? nullptr : &*it;
}

const std::string* jsonString(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  return member && member->is_string() ? member->get_ptr<const std::string*>() : nullptr;
}

bool isStringDictionary(const Json& value) {
  if (!value.is_object()) return false;
  for (const auto& [key, member] : value.items()) {
    if (!member.is_string()) return false;
  }
  return true;
}

}  // namespace varnel
