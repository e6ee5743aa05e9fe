#pragma once
// The host environment from a JSON endpoint table (format in
// resources/environments/README.md): endpoint keys map to URL templates whose
// {token} placeholders are filled from the request's tokens.

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "varnel/host/KTVREnvironment.h"
#include "varnel/platform/Result.h"

namespace varnel::standalone {

/// Domain of the errors of reading an environment file (code 1 unreadable, 2 malformed).
inline constexpr const char* kEnvironmentErrorDomain = "Varnel.Environment";

class JsonEnvironment final : public KTVREnvironment {
 public:
  explicit JsonEnvironment(std::map<std::string, std::string, std::less<>> templates);

  /// Parses an environment document; every "{server}" becomes `server`
  /// (trailing "/" removed) when one is given.
  static Result<std::shared_ptr<JsonEnvironment>> parse(const std::string& text,
                                                        const std::optional<std::string>& server = std::nullopt);
  static Result<std::shared_ptr<JsonEnvironment>> load(const std::filesystem::path& file,
                                                       const std::optional<std::string>& server = std::nullopt);
  /// The mock commerce server's table (environments/mock.json of the
  /// module's resources) for the server at `server` ("http://127.0.0.1:8080").
  static Result<std::shared_ptr<JsonEnvironment>> forServer(const std::string& server);

  std::optional<Json> valueForKey(std::string_view key,
                                  const std::map<std::string, std::string>& tokens) const override;

 private:
  std::map<std::string, std::string, std::less<>> templates_;
};

}  // namespace varnel::standalone
