#pragma once
// The host's remote configuration: values that the app's back office sets,
// looked up by key.

#include <optional>
#include <string_view>

#include "varnel/platform/Json.h"

namespace varnel {

class KTVRRemoteConfiguration {
 public:
  virtual ~KTVRRemoteConfiguration() = default;

  /// "configurationValueByKey:": the value under `key` as the back office set
  /// it (of any JSON type), or none when the key is not configured.
  virtual std::optional<Json> configurationValueByKey(std::string_view key) const = 0;
};

}  // namespace varnel
