#include "varnel/standalone/JsonRemoteConfiguration.h"

#include "varnel/standalone/InputFile.h"

namespace varnel::standalone {
namespace {

Error loadError(const std::string& origin, int code, const std::string& message) {
  return Error{kJsonRemoteConfigurationErrorDomain, code, Json{{"message", message}, {"path", origin}}};
}

}  // namespace

JsonRemoteConfiguration::JsonRemoteConfiguration(Json values)
    : values_(values.is_object() ? std::move(values) : Json::object()) {}

Result<std::shared_ptr<JsonRemoteConfiguration>> JsonRemoteConfiguration::parse(std::string_view text,
                                                                               const std::string& origin) {
  JsonParse values = parseJson(text, kJsonLimitsUniqueKeys);
  if (!values) {
    return loadError(origin, 2, "the remote configuration " + origin + " is not usable: " + values.refusal);
  }
  if (!values.value->is_object()) {
    return loadError(origin, 3, "the remote configuration " + origin + " is not a JSON object of key to value");
  }
  return std::make_shared<JsonRemoteConfiguration>(std::move(*values.value));
}

Result<std::shared_ptr<JsonRemoteConfiguration>> JsonRemoteConfiguration::load(const std::filesystem::path& path) {
  const auto text = readInputFile(path);
  if (!text) {
    const std::string* reason = jsonString(text.error().userInfo, "reason");
    return loadError(path.string(), 1,
                     "cannot read the remote configuration " + path.string() + (reason ? ": " + *reason : ""));
  }
  return parse(text.value(), path.string());
}

std::optional<Json> JsonRemoteConfiguration::configurationValueByKey(std::string_view key) const {
  const Json* value = jsonMember(values_, key);
  if (!value) return std::nullopt;
  return *value;
}

}  // namespace varnel::standalone
