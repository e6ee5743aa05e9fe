#include "varnel/standalone/network/StandaloneNetworking.h"

#include "varnel/host/Registry.h"

namespace varnel::standalone {

StandaloneNetworking installStandaloneNetworking(std::shared_ptr<KTVREnvironment> environment,
                                                 AccessTokenSource accessToken, HttpClientOptions options) {
  using host::Registry;
  StandaloneNetworking networking;
  networking.client = std::make_shared<HttpClient>(std::move(options));
  networking.service = std::make_shared<CurlPrivateDataService>(networking.client, std::move(accessToken));
  networking.session = std::make_shared<CurlURLSession>(networking.client);
  networking.warmer = std::make_shared<CurlConnectionWarmer>(networking.client);
  Registry::set<KTVREnvironment>(std::move(environment));
  Registry::set<KTVRPrivateDataService>(networking.service);
  Registry::set<URLSession>(networking.session);
  Registry::set<ConnectionWarmer>(networking.warmer);
  return networking;
}

void uninstallStandaloneNetworking() {
  using host::Registry;
  Registry::set<KTVRPrivateDataService>(nullptr);
  Registry::set<URLSession>(nullptr);
  Registry::set<ConnectionWarmer>(nullptr);
  Registry::set<KTVREnvironment>(nullptr);
}

}  // namespace varnel::standalone
