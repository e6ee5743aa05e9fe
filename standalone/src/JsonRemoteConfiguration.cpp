#include "varnel/standalone/JsonRemoteConfiguration.h"

#include <fstream>
#include <sstream>

namespace varnel::standalone {
namespace {

Error loadError(const std::filesystem::path& path, int code, const std::string& message) {
  return Error{kJsonRemoteConfigurationErrorDomain, code, Json{{"message", message}, {"path", path.string()}}};
}

}  // namespace

JsonRemoteConfiguration::JsonRemoteConfiguration(Json values)
    : values_(values.is_object() ? std::move(values) : Json::object()) {}

Result<std::shared_ptr<JsonRemoteConfiguration>> JsonRemoteConfiguration::load(const std::filesystem::path& path) {
  std::error_code ignored;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (file) text << file.rdbuf();
  if (!file || file.bad() || std::filesystem::is_directory(path, ignored)) return loadError(path, 1, "cannot read the remote configuration " + path.string());

  Json values = Json::parse(text.str(), nullptr, false);
  if (values.is_discarded()) {
    return loadError(path, 2, "the remote configuration " + path.string() + " is not valid JSON");
  }
  if (!values.is_object()) {
    return loadError(path, 3, "the remote configuration " + path.string() + " is not a JSON object of key to value");
  }
  return std::make_shared<JsonRemoteConfiguration>(std::move(values));
}

std::optional<Json> JsonRemoteConfiguration::configurationValueByKey(std::string_view key) const {
  const Json* value = jsonMember(values_, key);
  if (!value) return std::nullopt;
  return *value;
}

}  // namespace varnel::standalone
