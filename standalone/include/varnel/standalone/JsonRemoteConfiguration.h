#pragma once
// The stand-alone remote configuration: a JSON object of key to value, read
// once from a file (or given directly). Immutable afterwards, so any thread
// may look values up.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "varnel/host/KTVRRemoteConfiguration.h"
#include "varnel/platform/Result.h"

namespace varnel::standalone {

/// Domain of the errors that load() reports; their user information holds
/// "message" (a sentence for people) and "path".
inline constexpr const char* kJsonRemoteConfigurationErrorDomain = "Varnel.JsonRemoteConfiguration";

class JsonRemoteConfiguration final : public KTVRRemoteConfiguration {
 public:
  /// `values` must be an object; anything else configures nothing.
  explicit JsonRemoteConfiguration(Json values);

  /// Reads the object from `path`, an input file of the tools (InputFile.h).
  /// A missing or unusable file, text that is not JSON within the JSON limits
  /// (Json.h), a key named twice, or JSON that is not an object is an error.
  static Result<std::shared_ptr<JsonRemoteConfiguration>> load(const std::filesystem::path& path);

  /// The same from the text itself; `origin` names it in errors.
  static Result<std::shared_ptr<JsonRemoteConfiguration>> parse(std::string_view text,
                                                                const std::string& origin = "text");

  std::optional<Json> configurationValueByKey(std::string_view key) const override;

 private:
  Json values_;
};

}  // namespace varnel::standalone
