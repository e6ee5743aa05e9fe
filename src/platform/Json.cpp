#include "varnel/platform/Json.h"

#include <set>
#include <vector>

namespace varnel {
namespace {

/// Thrown by the parser callback to stop at the first refusal; never leaves
/// parseJson().
struct JsonRefused {
  std::string reason;
};

/// Where the library's parser stops on text that is not JSON, found without
/// an exception (they are slow, and most refused texts are not JSON).
class ErrorLocator final : public nlohmann::json_sax<Json> {
 public:
  std::size_t byte = 0;

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override { return true; }
  bool key(string_t&) override { return true; }
  bool end_object() override { return true; }
  bool start_array(std::size_t) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
    byte = position;
    return false;
  }
};

/// Counts nesting and, when asked, the keys of each open object, while the
/// library parses.
class JsonGuard {
 public:
  explicit JsonGuard(const JsonLimits& limits) : limits_(limits) {}

  bool operator()(int depth, Json::parse_event_t event, Json& parsed) {
    switch (event) {
      case Json::parse_event_t::object_start:
      case Json::parse_event_t::array_start:
        // `depth` counts the containers around this one.
        if (static_cast<std::size_t>(depth) >= limits_.maxDepth) {
          throw JsonRefused{"nested deeper than " + std::to_string(limits_.maxDepth) + " levels"};
        }
        if (event == Json::parse_event_t::object_start && limits_.refuseDuplicateKeys) openObjects_.emplace_back();
        break;
      case Json::parse_event_t::key:
        if (limits_.refuseDuplicateKeys && !openObjects_.empty() &&
            !openObjects_.back().insert(parsed.get<std::string>()).second) {
          throw JsonRefused{"the key " + Json(parsed).dump(-1, ' ', false, Json::error_handler_t::replace) +
                            " appears twice in one object"};
        }
        break;
      case Json::parse_event_t::object_end:
        if (limits_.refuseDuplicateKeys && !openObjects_.empty()) openObjects_.pop_back();
        break;
      default: break;
    }
    return true;
  }

 private:
  const JsonLimits& limits_;
  std::vector<std::set<std::string>> openObjects_;
};

}  // namespace

JsonParse parseJson(std::string_view text, const JsonLimits& limits) {
  if (text.size() > limits.maxBytes) {
    return {std::nullopt, "larger than " + std::to_string(limits.maxBytes) + " bytes"};
  }
  try {
    JsonGuard guard(limits);
    Json value = Json::parse(text.begin(), text.end(), std::ref(guard), /*allow_exceptions=*/false);
    if (!value.is_discarded()) return {std::move(value), {}};
    ErrorLocator locator;
    Json::sax_parse(text.begin(), text.end(), &locator);
    return {std::nullopt, "not valid JSON (at byte " + std::to_string(locator.byte) + ")"};
  } catch (const JsonRefused& refused) {
    return {std::nullopt, refused.reason};
  } catch (const std::exception& failure) {
    return {std::nullopt, std::string("not readable as JSON: ") + failure.what()};
  }
}

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
