#pragma once
// The stand-alone remote configuration: a JSON object of key to value, read
// once from a file (or given directly). Immutable afterwards, so any thread
// may look values up.

#include <filesystem>
#include <memory>

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

  /// Reads the object from `path`. A missing or unreadable file, text that is
  /// not JSON, or JSON that is not an object is an error.
  static Result<std::shared_ptr<JsonRemoteConfiguration>> load(const std::filesystem::path& path);

  std::optional<Json> configurationValueByKey(std::string_view key) const override;

 private:
  Json values_;
};

}  // namespace varnel::standalone
