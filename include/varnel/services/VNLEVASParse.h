#pragma once
// Canned entitlement-validation data for testers: a JSON resource of the
// application's main bundle (applicationResourceDirectory()), read in place of
// the live service and handed to the entitlements manager's parser.

#include <optional>
#include <string_view>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Json.h"

namespace varnel {

class VNLEVASParse {
 public:
  VNLEVASParse() = delete;

  /// The decoded JSON of the resource `fileName`.json; a bare string or number
  /// at the top level is accepted. A missing or unreadable resource gives an
  /// empty object silently; one that is not JSON gives an empty object and
  /// logs "Failed to load json file".
  static Json dataFromJsonFile(std::string_view fileName);

  /// The entitlements the manager's parser (ENTMParseTicketsAndAPs) makes of
  /// that resource, as the parser returns them.
  static std::optional<ENTMAnyList> parseEvasJson(std::string_view jsonFileName);
};

}  // namespace varnel
