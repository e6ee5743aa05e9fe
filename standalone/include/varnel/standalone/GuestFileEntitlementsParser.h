#pragma once
// The entitlements manager's parser of entitlement-validation JSON, reading the
// guest data file's entitlement format: a JSON list of entitlement objects
// (see GuestDataFile.h). Anything else, including a list with one malformed
// entitlement, is not read at all.

#include "varnel/host/ENTMParseTicketsAndAPs.h"

namespace varnel::standalone {

class GuestFileEntitlementsParser final : public ENTMTicketsAndAPsParsing {
 public:
  std::optional<ENTMAnyList> parse(const Json& json) const override;
};

}  // namespace varnel::standalone
