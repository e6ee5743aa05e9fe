#pragma once
// The host's environment: endpoint keys ("create-orders", ...) with their
// tokens resolve to the URLs of the environment the app talks to.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Json.h"

namespace varnel {

class KTVREnvironment {
 public:
  virtual ~KTVREnvironment() = default;
  /// The value under `key` with `tokens` filled in: a URL string for the
  /// request keys; none for an unknown key.
  virtual std::optional<Json> valueForKey(std::string_view key,
                                          const std::map<std::string, std::string>& tokens) const = 0;
};

struct KTVRServices {
  /// The environment registered with the host registry, or none.
  static std::shared_ptr<KTVREnvironment> environment();
};

}  // namespace varnel
