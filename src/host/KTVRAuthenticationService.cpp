#include "varnel/host/KTVRAuthenticationService.h"

#include "varnel/host/Registry.h"

namespace varnel {

std::shared_ptr<KTVRAuthenticationService> KTVRAuthenticationService::sharedInstance() {
  return host::Registry::get<KTVRAuthenticationService>();
}

}  // namespace varnel
