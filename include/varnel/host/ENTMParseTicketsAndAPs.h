#pragma once
// The entitlements manager's parser of entitlement-validation JSON. Made with
// no arguments; it parses with the parser the host registered (the stand-alone
// host: the guest-file entitlement format).

#include <memory>
#include <optional>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Json.h"

namespace varnel {

/// The host's implementation, held by the registry.
class ENTMTicketsAndAPsParsing {
 public:
  virtual ~ENTMTicketsAndAPsParsing() = default;
  /// The entitlements of `json`; none when it is not a list the parser reads.
  virtual std::optional<ENTMAnyList> parse(const Json& json) const = 0;
};

class ENTMParseTicketsAndAPs {
 public:
  /// The entitlements the registered parser makes of `json`; none when no
  /// parser is registered or it cannot read `json`.
  std::optional<ENTMAnyList> parse(const Json& json) const;
};

}  // namespace varnel
