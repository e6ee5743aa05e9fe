#pragma once
// Installs the stand-alone networking in the host registry: one HttpClient
// behind the private data service, the URL session and the connection
// warmer, and the environment.

#include <memory>

#include "varnel/host/KTVREnvironment.h"
#include "varnel/standalone/network/CurlConnectionWarmer.h"
#include "varnel/standalone/network/CurlPrivateDataService.h"
#include "varnel/standalone/network/CurlURLSession.h"

namespace varnel::standalone {

struct StandaloneNetworking {
  std::shared_ptr<HttpClient> client;
  std::shared_ptr<CurlPrivateDataService> service;
  std::shared_ptr<CurlURLSession> session;
  std::shared_ptr<CurlConnectionWarmer> warmer;
};

/// Makes and registers KTVRPrivateDataService, URLSession, ConnectionWarmer
/// and KTVREnvironment.
StandaloneNetworking installStandaloneNetworking(std::shared_ptr<KTVREnvironment> environment,
                                                 AccessTokenSource accessToken, HttpClientOptions options = {});

/// Clears those registry slots again (the service and session are destroyed
/// once nobody else holds them).
void uninstallStandaloneNetworking();

}  // namespace varnel::standalone
