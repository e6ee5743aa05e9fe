#include "varnel/standalone/network/JsonEnvironment.h"

#include <fstream>
#include <sstream>

#include "varnel/host/ResourceBundle.h"

namespace varnel::standalone {
namespace {

Error environmentError(long code, const std::string& reason) {
  return Error{kEnvironmentErrorDomain, code, Json{{kErrorLocalizedDescriptionKey, reason}}};
}

void replaceAll(std::string& text, std::string_view placeholder, std::string_view value) {
  for (auto at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at + value.size())) {
    text.replace(at, placeholder.size(), value);
  }
}

}  // namespace

JsonEnvironment::JsonEnvironment(std::map<std::string, std::string, std::less<>> templates)
    : templates_(std::move(templates)) {}

Result<std::shared_ptr<JsonEnvironment>> JsonEnvironment::parse(const std::string& text,
                                                                const std::optional<std::string>& server) {
  const JsonParse parsed = parseJson(text);
  if (!parsed) return environmentError(2, "the environment is not usable JSON: " + parsed.refusal);
  const Json& document = *parsed.value;
  const Json* endpoints = jsonMember(document, "endpoints");
  if (!endpoints || !endpoints->is_object()) return environmentError(2, "the environment has no \"endpoints\" object");
  std::string base = server.value_or("");
  while (!base.empty() && base.back() == '/') base.pop_back();
  std::map<std::string, std::string, std::less<>> templates;
  for (const auto& [key, value] : endpoints->items()) {
    if (!value.is_string()) return environmentError(2, "the endpoint \"" + key + "\" is not a URL template");
    std::string url = value.get<std::string>();
    if (url.find("{server}") != std::string::npos) {
      if (!server) return environmentError(2, "the environment needs a server URL (--server)");
      replaceAll(url, "{server}", base);
    }
    templates.emplace(key, std::move(url));
  }
  return std::make_shared<JsonEnvironment>(std::move(templates));
}

Result<std::shared_ptr<JsonEnvironment>> JsonEnvironment::load(const std::filesystem::path& file,
                                                               const std::optional<std::string>& server) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return environmentError(1, "cannot read " + file.string());
  std::ostringstream text;
  text << in.rdbuf();
  return parse(text.str(), server);
}

Result<std::shared_ptr<JsonEnvironment>> JsonEnvironment::forServer(const std::string& server) {
  if (!server.starts_with("http://") && !server.starts_with("https://")) {
    return environmentError(2, "the server URL must start with http:// or https://");
  }
  return load(varnelResourceDirectory() / "environments" / "mock.json", server);
}

std::optional<Json> JsonEnvironment::valueForKey(std::string_view key,
                                                 const std::map<std::string, std::string>& tokens) const {
  auto it = templates_.find(key);
  if (it == templates_.end()) return std::nullopt;
  std::string url = it->second;
  for (const auto& [name, value] : tokens) replaceAll(url, "{" + name + "}", value);
  return Json(url);
}

}  // namespace varnel::standalone
