// The shared instances of the host's networking, profile and parsing
// libraries: whatever the host registered, or none.

#include "varnel/host/ENTMParseTicketsAndAPs.h"
#include "varnel/host/KTVREnvironment.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/URLSession.h"

namespace varnel {

std::shared_ptr<KTVRPrivateDataService> KTVRPrivateDataService::sharedInstance() {
  return host::Registry::get<KTVRPrivateDataService>();
}

std::shared_ptr<KTVREnvironment> KTVRServices::environment() { return host::Registry::get<KTVREnvironment>(); }

std::shared_ptr<KTVRUserProfileAuthentication> KTVRUserProfileAuthentication::sharedInstance() {
  return host::Registry::get<KTVRUserProfileAuthentication>();
}

std::shared_ptr<URLSession> URLSession::shared() { return host::Registry::get<URLSession>(); }

std::optional<ENTMAnyList> ENTMParseTicketsAndAPs::parse(const Json& json) const {
  auto parser = host::Registry::get<ENTMTicketsAndAPsParsing>();
  if (!parser) return std::nullopt;
  return parser->parse(json);
}

}  // namespace varnel
